#pragma once

#include "initialisation/step_machine.h"

#include <functional>
#include <memory>

// The supported-PID loop: asks a service for its maps of supported PIDs (00, 20, 40 ... as far as they are
// announced, SAE J1979) and lists them by ECU. While it runs every reply goes to it instead of the current
// step machine. For service 01 it also asks the person when the car answers otherwise than the one stored.
class inner_process_pid_support {
public:
    using finished = std::function<void(const obd_groups&)>;

    inner_process_pid_support(operation_context& its_context, task_controller& its_controller);

    // Asks with the service `mode` ("01") and a suffix after each PID ("" or " 00"). When it is done, `done`
    // gets the list, and the current task goes on at `next_step`.
    void start(const QString& mode, const QString& suffix, int next_step, finished done);
    void l_inner_process_pid_support(const QString& reply);

private:
    void send_first();
    void take_maps(const QString& reply);
    bool next_group_wanted() const;
    void send_next();
    void ask(const QString& expected);
    void no_more_groups();
    void ask_whether_same_car();
    void go_on();
    // Service 01 tells which car this is; its list is the available-PID list.
    bool is_the_car() const { return service == QLatin1String("01"); }
    obd_group& entry_of(const QString& header);

    operation_context& context;
    process_state& state;
    task_controller& controller;

    QString service;
    QString request_suffix;
    int step_after = 0;
    finished when_done;
    unsigned group = 0; // the map asked for: 00, 20, 40 ...
    obd_groups found;
    // Identifies the question in flight: an answer that comes after the loop was left is ignored.
    std::shared_ptr<int> asked;
};
