#pragma once

#include "expert/expert_commands.h"
#include "expert/expert_session.h"
#include "operations/car_talk.h"

namespace brivant {

// The controller of the expert console: single commands as they are typed, and scripts. Replies are passed on
// unchecked and go into the transcript of the session; the view is told by screen::reload("transcript"),
// reload("sent") when a typed command was taken, and reload("operation").
class expertCtrlr : public car_talk {
public:
    // Everything referred to outlives the controller.
    expertCtrlr(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                user_defaults& settings, expert_session& its_session);
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

    bool is_script_running() const { return script_runs; }
    int commands_answered() const { return answered; }
    int commands_in_all() const { return script.commands_in_all(); }
    expert_session& session() { return own; }

    // Also called with false when the person does not agree to send it: operation_ended.

    // Every reply goes into the transcript, a late one too, line by line as it comes.
    void handle_piece(const QString& text) override;
    void handleOBDRcvdMsg(const reply& what_came) override;
    // An answer without an end is stopped at the adapter, and shown to its end; the second time it is left.
    void stop() override;

private:
    void print_cmd_highlighted(const QString& command);
    void show_lines(QString lines);
    void add_to_transcript(const QString& lines);
    // Goes on with `send` at once, or when the person agrees to what `commands` change.
    void warn_first(const QStringList& commands, std::function<void()> send);
    void start_operation(talk (expertCtrlr::*what)(), const char* logged);
    talk say_typed();
    talk work_out_script_mode();
    // One command and its reply; a lost link is written into the transcript.
    talk exchange_one(QString command);
    void check_words(const reply& answer);
    void let_go() override { script_runs = false; }
    void started() override;

    user_defaults& defaults;
    expert_session& own;
    expert_script script;
    QString typed_command; // the one that the current operation sends, without its "\r"
    reply latest;          // the last reply
    QString unfinished;    // the line that is coming
    bool is_shown = false; // something of the reply that is coming
    bool is_stopping = false;
    bool puts_back = false; // what a run had changed: the replies are none to the person
    // Identifies the question in flight: an answer that comes after the screen was left is ignored.
    std::shared_ptr<int> asked;
    int answered = 0; // commands of the script
    bool script_runs = false;
    bool has_asked = false; // a command was sent since the console was opened
};

} // namespace brivant
