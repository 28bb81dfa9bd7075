#include "expert/expertCtrlr.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"
#include "operations/put_back_settings.h"

#include <QRegularExpression>
#include <optional>

namespace brivant {

namespace {

constexpr int late_reply_ms = 3000;

} // namespace

expertCtrlr::expertCtrlr(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies,
                         screen& its_view, user_defaults& settings, expert_session& its_session)
    : car_talk(its_car, its_link, its_toolies, its_view), defaults(settings), own(its_session) {}

expertCtrlr::~expertCtrlr() {
    operation_ended = nullptr;
    if (link.mainViewController() == this)
        link.set_controller(nullptr);
}

void expertCtrlr::load() {
    has_asked = false;
}

// --- what the person starts and stops ----------------------------------------------------------------------

void expertCtrlr::handle_a_send(const QString& typed) {
    const QString command = typed.trimmed();
    if (is_running())
        return set_status_msg(QStringLiteral("The command before still waits for its answer; Esc stops it"));
    if (command.isEmpty())
        return view.show_message(
            QString(), fill(QStringLiteral("Missing - %@"), {localised(QStringLiteral("blank_input_MSG"))}));
    const QString problem = command_problem(command);
    if (!problem.isEmpty())
        return view.show_message(QStringLiteral("Not sent"), problem);
    warn_first({command}, [this, command] {
        typed_command = command;
        own.history.add(command);
        view.reload(part::sent);
        print_cmd_highlighted(command);
        start_operation(&expertCtrlr::say_typed, nullptr);
    });
}

void expertCtrlr::start_script(const QStringList& values) {
    if (is_running())
        return set_status_msg(QStringLiteral("The command before still waits for its answer; Esc stops it"));
    QStringList problems;
    const auto wanted = check_script(values, problems);
    if (!wanted) {
        problems.removeAll(QString());
        return view.show_message(QStringLiteral("The script was not started"), problems.join(u'\n'));
    }
    store_script(defaults, values);
    QStringList one_pass;
    for (int byte = wanted->first_byte(); byte <= wanted->last_byte(); ++byte)
        one_pass += wanted->command(byte);
    warn_first(one_pass, [this, wanted] {
        script = *wanted;
        answered = 0;
        script_runs = true;
        start_operation(&expertCtrlr::work_out_script_mode, "work_out_script_mode");
    });
}

void expertCtrlr::warn_first(const QStringList& commands, std::function<void()> send) {
    QString warning;
    for (const QString& command : commands) {
        const QString change = own.warned ? QString() : permanent_change(command);
        if (warning.isEmpty() && !change.isEmpty())
            warning =
                QStringLiteral("%1 %2. Send it?\n\nAfter a Yes this is not asked again until the program is "
                               "started anew.")
                    .arg(command, change);
    }
    if (warning.isEmpty())
        return send();
    asked = std::make_shared<int>(0);
    view.ask_yes_no(QStringLiteral("This cannot be undone"), warning,
                    [this, send = std::move(send), question = std::weak_ptr<int>(asked)](bool yes) {
                        if (question.expired() || is_running())
                            return;
                        if (yes) {
                            own.warned = true;
                            send();
                        } else if (operation_ended) {
                            operation_ended(false);
                        }
                    });
}

void expertCtrlr::start_operation(talk (expertCtrlr::*what)(), const char* logged) {
    has_asked = true;
    is_stopping = puts_back = false;
    unfinished.clear();
    if (link.is_connected())
        set_status_msg(QStringLiteral(""));
    start({op_expert, QString(), QStringLiteral("work_out_script_mode::Did not fully complete [ %@ ]"),
           logged, [this, what] { return (this->*what)(); }});
}

void expertCtrlr::started() {
    view.reload(part::operation);
}

void expertCtrlr::clickClear() {
    own.lines.clear();
    view.reload(part::transcript);
}

// --- the talks ---------------------------------------------------------------------------------------------

talk expertCtrlr::exchange_one(QString command) {
    puts_back = link.has_changed_settings();
    co_await put_back_settings(*this);
    puts_back = false;
    try {
        const sent_command typed = as_typed(command + u'\r');
        latest = co_await send(typed);
        if (is_stopping && script_runs)
            throw left{QStringLiteral("Stopped")};
        // Commands that are answered inside the send must not keep the event loop; the reply to an earlier
        // try must not stand under the next command.
        if (was_answered_at_once())
            co_await pause(0);
        while (link.is_late_reply_due())
            if (!co_await pause(late_reply_ms))
                break;
        link.forget_late_replies();
    } catch (const link_lost&) {
        own.lines.add_reply(QStringLiteral("-- the connection was lost --"));
        view.reload(part::transcript);
        throw;
    }
}

// One that was typed is not sent again by itself: it may have reached the car.
talk expertCtrlr::say_typed() {
    co_await exchange_one(typed_command);
    show(QStringLiteral(""));
}

// The bytes From to To, one command each, as often as there are loops.
talk expertCtrlr::work_out_script_mode() {
    show("Starting Expert script mode");
    for (int pass = 1; pass <= script.no_of_loops_script; ++pass) {
        for (int byte = script.first_byte(); byte <= script.last_byte(); ++byte) {
            std::optional<link_lost> lost;
            do {
                try {
                    if (lost)
                        co_await again(*lost);
                    lost.reset();
                    co_await exchange_one(script.command(byte));
                } catch (const link_lost& loss) {
                    if (answered == 0)
                        throw;
                    lost = loss;
                }
            } while (lost);
            ++answered;
            check_words(latest);
        }
    }
    show("Current Script completed");
}

// What the adapter answers is not checked, beyond the words that say that it cannot reach the car. Replies
// come with and without blanks.
void expertCtrlr::check_words(const reply& answer) {
    const QString cleaned = clean_a_reply(answer.text());
    const QString words = QString(cleaned).remove(u' ');
    if (words.contains(QLatin1String("UNABLETOCONNECT"))) {
        part_with(
            QStringLiteral("Did not get a reply from Car port.  Check ignition key is at least in position "
                           "2(right before crank) and pairing/connections"),
            QString());
        throw left{};
    }
    if (words.contains(QLatin1String("BUSINIT:")) && words.contains(QLatin1String("ERROR"))) {
        const QString text =
            fill(QStringLiteral("(%@)Setting OBD BUS to your Car's port FAILED ... Check and try again"),
                 {cleaned.trimmed()});
        part_with(text, QString());
        throw left{text};
    }
}

void expertCtrlr::handleOBDRcvdMsg(const reply& what_came) {
    console_log(QStringLiteral("expertC:handleOBDRcvdMsg got the stuff%1").arg(what_came.text()));
    if (!has_asked)
        return; // it answers the screen before
    if (puts_back)
        return car_talk::handleOBDRcvdMsg(what_came);
    show_lines(std::exchange(unfinished, QString()));
    if (!is_shown)
        add_to_transcript(QString()); // an answer all the same
    is_shown = false;
    if (is_paused()) {
        latest = what_came;
        return hurry();
    }
    car_talk::handleOBDRcvdMsg(what_came);
}

void expertCtrlr::handle_piece(const QString& text) {
    if (!has_asked)
        return; // it answers the screen before
    unfinished += text;
    const qsizetype end = std::max(unfinished.lastIndexOf(u'\r'), unfinished.lastIndexOf(u'\n'));
    if (end >= 0) {
        show_lines(unfinished.first(end));
        unfinished.remove(0, end + 1);
    } else if (unfinished.size() >= transcript::longest_line) {
        show_lines(std::exchange(unfinished, QString()));
    }
}

void expertCtrlr::show_lines(QString lines) {
    static const QRegularExpression line_ends(QStringLiteral("[\r\n]+"));
    lines = prepReply(lines).replace(line_ends, QStringLiteral("\n"));
    if (lines.endsWith(u'\n'))
        lines.chop(1);
    if (!lines.isEmpty())
        add_to_transcript(lines);
}

void expertCtrlr::add_to_transcript(const QString& lines) {
    if (!std::exchange(is_shown, true) && script_runs &&
        !is_paused()) // else it is the reply to the second try
        print_cmd_highlighted(QString(link.current_command()).remove(u'\r'));
    own.lines.add_reply(lines);
    view.reload(part::transcript);
}

void expertCtrlr::stop() {
    if (is_stopping || !is_running() || !link.is_being_answered())
        return car_talk::stop();
    is_stopping = true;
    link.interrupt();
    show(QStringLiteral("Stopping the answer; Esc again leaves it"));
}

void expertCtrlr::print_cmd_highlighted(const QString& command) {
    own.lines.add_command(command);
    view.reload(part::transcript);
}

} // namespace brivant
