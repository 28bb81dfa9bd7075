#pragma once

#include "expert/expert_session.h"
#include "expert/work_out_script_mode.h"

#include <functional>
#include <memory>

// The controller of the expert console: single commands as they are typed, and scripts. Replies are passed on
// unchecked and go into the transcript of the session; the view is told by screen::reload("transcript"),
// reload("sent") when a typed command was taken, and reload("operation").
class expertCtrlr : public task_controller {
public:
    // Everything referred to outlives the controller.
    expertCtrlr(process_state& process, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                timers& time_source, user_defaults& settings, expert_session& its_session);
    ~expertCtrlr() override;

    // The screen is the one shown: from now on replies are not checked.
    void load();
    // Sends a typed command, after a question when it is the first of the program's run to change something
    // for good. Nothing is sent while another command waits for its answer.
    void handle_a_send(const QString& typed);
    // Stores the four texts of the script dialog and runs the script, with the question as above. Texts that
    // are wrong (see check_script) are told and start nothing.
    void start_script(const QStringList& values);
    void clickClear();
    void stop();

    bool is_running() const { return running; }
    bool is_script_running() const { return script.is_running(); }
    int commands_answered() const { return script.commands_answered(); }
    int commands_in_all() const { return script.commands_in_all(); }
    expert_session& session() { return own; }

    // Called when a command or a script ends: true when it was answered to its end. Also, with false, when
    // the person does not agree to send it.
    std::function<void(bool done)> operation_ended;

    // task_controller
    void work_current_task(const QString& status) override;
    void handleOBDRcvdMsg(const QString& reply) override;
    void leave_cur_op_gracefully(const QString& status) override;
    // A script goes on with the command that was not answered. One that was typed is not sent again by
    // itself: it may have reached the car.
    link_loss on_link_lost() override;
    void set_status_msg(const QString& status) override { context.view.show_status(status); }
    void handleOBDToast(const QString& toast) override { context.view.show_toast(toast); }

private:
    void print_cmd_highlighted(const QString& command);
    // Goes on with `send` at once, or when the person agrees to what `commands` change.
    void warn_first(const QStringList& commands, std::function<void()> send);
    void start_operation();
    void run_script(const QString& reply);
    // The command is answered, and so are its earlier tries.
    void go_on(const QString& reply);

    operation_context context;
    process_state& state;
    timers& clock;
    user_defaults& defaults;
    expert_session& own;
    work_out_script_mode script;
    QString typed_command; // the one that the current operation sends, without its "\r"
    // Identifies the question in flight: an answer that comes after the screen was left is ignored.
    std::shared_ptr<int> asked;
    timer_handle next_step;
    bool has_asked = false; // a command was sent since the console was opened
    bool running = false;
    bool done = false;
    bool in_step = false;
    bool link_was_lost = false; // the script waits for a new link
};
