#pragma once

#include "diagnostics/diagnostic_host.h"
#include "diagnostics/session_log.h"
#include "diagnostics/work_O2_mode.h"
#include "diagnostics/work_misfire_reading.h"
#include "diagnostics/work_mode6_support.h"
#include "diagnostics/work_out_clear_codes.h"
#include "diagnostics/work_out_pending_freeze.h"
#include "diagnostics/work_out_permanent.h"
#include "diagnostics/work_out_read_codes.h"
#include "diagnostics/work_out_vehicle_info.h"
#include "diagnostics/work_out_xtras.h"
#include "initialisation/connect_2_interface.h"

#include <functional>
#include <memory>

// The controller of the diagnostics screen: it starts the diagnostic operations, hands each reply to the step
// machine of the current task, and ends them. One operation runs at a time.
class readCodes : public diagnostic_host {
public:
    // Everything referred to outlives the controller.
    readCodes(process_state& process, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
              diagnostic_results& its_results, const app_paths& its_paths);
    ~readCodes() override;

    // Reads the codes and the readiness of the monitors.
    void l_readCodes();
    void clickRefresh() { l_readCodes(); }
    // Asks first, then clears the codes.
    void clearCodes();
    // Clears the codes; the person has said yes already.
    void start_clearing();
    // Pending codes and freeze frame; vehicle information; test results; maker-specific values.
    void readPendingFreezeCodes();
    void readVehicleInfo();
    void readMode6Support();
    void readMisfire();
    void readO2();
    void readXtras();
    // Permanent codes and the monitors of this drive cycle.
    void readPermanent();
    // Codes, readiness, pending codes and freeze frame, one operation after the other.
    void read_for_report();
    // Initialises the adapter and stops there.
    void read_link_info();
    // The person stops the operation, or gives up a link that is opening.
    void stop();

    bool is_running() const { return running; }
    const operation_context& what_it_works_with() const { return context; }
    // The code's description: see look_upCode of obd/trouble_codes.h.
    QString description_of(const QString& code);
    // The report of an operation from what was read last; empty for an operation that leaves none.
    diagnostic_report report_of(int operation_code);
    // The window got the focus back.
    void regainFocus();
    // Sends a single command such as "AT H0\r" that is answered "OK", with its own time-out in seconds.
    void prep_and_send_cmd(const QString& command, int this_time_out);

    // Called when an operation ends: true when it reached its end, false when it failed or was left.
    std::function<void(bool done)> operation_ended;

    // task_controller
    void work_current_task(const QString& status) override;
    void handleOBDRcvdMsg(const QString& reply) override;
    void leave_cur_op_gracefully(const QString& status) override;
    void set_status_msg(const QString& status) override { context.view.show_status(status); }
    void handleOBDToast(const QString& toast) override { context.view.show_toast(toast); }

    // diagnostic_host
    bool connect_first() override;
    void task_done() override;
    void adapter_slowed() override { slowed = true; }
    void load_the_codes() override;
    void append_to_log(const QString& text) override { log.append_to_log(text); }
    void write_report() override;
    QString todays_date() const override;
    diagnostic_results& results() override { return results_; }

private:
    using next_operation = void (readCodes::*)();
    // `next`: what follows when it is done, as a part of it.
    void start_operation(operation code, const QString& status, next_operation next = nullptr);
    void read_codes_and(next_operation next);
    // The list of the operation is emptied with its replies and told to the view.
    void start_with_empty_list(operation code, const QString& status, QStringList& list,
                               const QString& list_name, result_list kept);
    // The freeze frame, and the replies to both.
    void forget_pending();
    step_machine* machine_of(int task);
    bool is_adapter_lost() const;

    operation_context context;
    process_state& state;
    diagnostic_results& results_;
    QString cur_reply_cp;
    // Identifies the question in flight: an answer that comes after the screen was left is ignored.
    std::shared_ptr<int> asked;
    bool running = false;
    bool done = false;
    bool slowed = false;
    next_operation follows = nullptr;

    inner_process_pid_support pid_loop;
    connect_2_interface connector;
    work_out_read_codes reading;
    work_out_clear_codes clearing;
    work_out_pending_freeze pending;
    work_out_permanent permanent;
    work_out_vehicle_info vehicle;
    work_mode6_support mode6;
    work_misfire_reading misfire;
    work_O2_mode o2_tests;
    work_out_xtras extras;
    session_log log;
};
