#pragma once

#include "expert/expert_commands.h"
#include "initialisation/step_machine.h"

// Runs a script: the bytes From to To, one command each, as often as there are loops. What the adapter
// answers is not checked, beyond the words that say that it cannot reach the car.
class work_out_script_mode : public step_machine {
public:
    using step_machine::step_machine;

    // The script that step 0 starts.
    void prepare(const expert_script& wanted);
    // Sends the command that has had no answer once more, over a new link.
    void send_again() { send_byte(1); }
    // No step is done any more.
    void stop() { is_expert_script = false; }
    bool is_running() const { return is_expert_script; }
    bool is_done() const { return cur_task_done; }

    int commands_answered() const { return answered_so_far; }
    int commands_in_all() const { return script.commands_in_all(); }

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override;

private:
    void start();
    void answered(const QString& reply);
    void next_command();
    void send_byte(int next_step_idx);

    expert_script script;
    int byte_idx = 0;  // the byte sent last
    int loops_idx = 0; // the pass, from 1
    int answered_so_far = 0;
    bool is_expert_script = false;
    bool cur_task_done = false;
};
