#pragma once

#include "initialisation/inner_process_pid_support.h"
#include "initialisation/step_machine.h"

// The adapter initialisation that runs before the first operation on a link: reset, echo off, identification,
// protocol, headers, the supported PIDs of every ECU. It ends by starting the operation in `cur_op`.
class connect_2_interface : public step_machine {
public:
    connect_2_interface(operation_context& its_context, task_controller& its_controller,
                        inner_process_pid_support& its_pid_loop);

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;
    bool failure_has_box() const override { return false; }

private:
    void reset_adapter();
    bool is_reset_wanted() const;
    void tell_failure(const QString& text);
    void echo_is_off();
    void keep_interface(const QString& reply);
    void protocol_described(const QString& reply);
    void first_pids_answered(const QString& reply);
    void start_pid_loop(const QString& reply);
    void further_pids_answered(const QString& reply, int group);
    void hand_over();
    int protocol_number(const QString& reply) const;

    inner_process_pid_support& pid_loop;
    bool protocol_was_refused = false; // "AT DP" was given up on once in this sequence
    int fixed_protocol_rounds = 0;     // how often the adapter told a fixed protocol in this sequence
};
