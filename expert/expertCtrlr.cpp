#include "expert/expertCtrlr.h"

#include "base/console_log.h"
#include "base/string_table.h"

namespace {

constexpr int idle = -1;
constexpr int timeout_secs = 3;
constexpr int late_reply_ms = 3000;

} // namespace

expertCtrlr::expertCtrlr(process_state& process, adapter_link& its_link, mac_toolies& its_toolies,
                         screen& its_view, timers& time_source, user_defaults& settings,
                         expert_session& its_session)
    : context{process, its_link, its_toolies, its_view, {}, {}}, state(process), clock(time_source),
      defaults(settings), own(its_session), script(context, *this) {}

expertCtrlr::~expertCtrlr() {
    operation_ended = nullptr;
    if (context.link.mainViewController() == this)
        context.link.set_controller(nullptr);
}

void expertCtrlr::load() {
    has_asked = false;
    state.cur_op = op_expert;
    state.cmd_timeout_secs = timeout_secs; // typed commands keep the one in force, whoever set it
}

// --- what the person starts and stops ----------------------------------------------------------------------

void expertCtrlr::handle_a_send(const QString& typed) {
    const QString command = typed.trimmed();
    if (running)
        return set_status_msg(QStringLiteral("The command before still waits for its answer; Esc stops it"));
    if (command.isEmpty())
        return context.view.show_message(
            QString(), fill(QStringLiteral("Missing - %@"), {localised(QStringLiteral("blank_input_MSG"))}));
    const QString problem = command_problem(command);
    if (!problem.isEmpty())
        return context.view.show_message(QStringLiteral("Not sent"), problem);
    warn_first({command}, [this, command] {
        typed_command = command;
        own.history.add(command);
        context.view.reload(QStringLiteral("sent"));
        print_cmd_highlighted(command);
        start_operation();
    });
}

void expertCtrlr::start_script(const QStringList& values) {
    if (running)
        return set_status_msg(QStringLiteral("The command before still waits for its answer; Esc stops it"));
    QStringList problems;
    const auto wanted = check_script(values, problems);
    if (!wanted) {
        problems.removeAll(QString());
        return context.view.show_message(QStringLiteral("The script was not started"), problems.join(u'\n'));
    }
    store_script(defaults, values);
    QStringList one_pass;
    for (int byte = wanted->first_byte(); byte <= wanted->last_byte(); ++byte)
        one_pass += wanted->command(byte);
    warn_first(one_pass, [this, wanted] {
        script.prepare(*wanted);
        start_operation();
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
    context.view.ask_yes_no(QStringLiteral("This cannot be undone"), warning,
                            [this, send = std::move(send), question = std::weak_ptr<int>(asked)](bool yes) {
                                if (question.expired() || running)
                                    return;
                                if (yes) {
                                    own.warned = true;
                                    send();
                                } else if (operation_ended) {
                                    operation_ended(false);
                                }
                            });
}

void expertCtrlr::start_operation() {
    has_asked = true;
    running = true;
    done = false;
    context.begin(op_expert);
    context.view.show_busy(true);
    context.view.reload(QStringLiteral("operation"));
    if (!context.link.openInterfaceConnection())
        return; // the link starts it when it is open
    set_status_msg(QStringLiteral(""));
    context.link.l_work_current_task(QString());
}

void expertCtrlr::clickClear() {
    own.lines.clear();
    context.view.reload(QStringLiteral("transcript"));
}

void expertCtrlr::stop() {
    context.link.stop_opening();
    leave_cur_op_gracefully(QStringLiteral("Stopped"));
}

// --- what the link tells -----------------------------------------------------------------------------------

void expertCtrlr::work_current_task(const QString& status) {
    if (!running)
        return;
    if (context.link.is_redo())
        return context.link.send_again();
    if (!status.isEmpty())
        set_status_msg(status);
    if (std::exchange(link_was_lost, false) && script.is_running())
        script.send_again();
    else if (script.is_running())
        run_script(QString());
    else
        context.link.sendOBDcmd(typed_command + u'\r');
}

void expertCtrlr::handleOBDRcvdMsg(const QString& reply) {
    console_log(QStringLiteral("expertC:handleOBDRcvdMsg got the stuff%1").arg(reply));
    if (!has_asked)
        return; // it answers the screen before
    if (reply.contains(QLatin1String("Timeout"))) {
        context.view.beep();
        return leave_cur_op_gracefully(QStringLiteral("Cur op timed out... Please Check/retry"));
    }
    const bool is_late = std::exchange(next_step, nullptr) != nullptr; // the reply to the second try
    if (script.is_running() && !is_late)
        print_cmd_highlighted(QString(context.link.current_command()).remove(u'\r'));
    own.lines.add_reply(reply);
    context.view.reload(QStringLiteral("transcript"));
    if (!running) // late, but said
        return;
    if (in_step) // a simulated reply: the steps must neither pile up nor keep the event loop
        next_step = clock.one_shot(0, [this, reply] { go_on(QString(reply)); });
    else if (context.link.is_late_reply_due()) // it must not stand under the next command
        next_step = clock.one_shot(late_reply_ms, [this, reply] { go_on(QString(reply)); });
    else
        go_on(reply);
}

void expertCtrlr::go_on(const QString& reply) {
    next_step.reset();
    context.link.forget_late_replies();
    if (script.is_running())
        return run_script(reply);
    done = true;
    leave_cur_op_gracefully(QStringLiteral(""));
}

void expertCtrlr::run_script(const QString& reply) {
    in_step = true;
    script.run(reply);
    in_step = false;
    if (!script.is_done())
        return;
    done = true;
    leave_cur_op_gracefully(QStringLiteral(""));
}

task_controller::link_loss expertCtrlr::on_link_lost() {
    if (running && !link_was_lost) {
        own.lines.add_reply(QStringLiteral("-- the connection was lost --"));
        context.view.reload(QStringLiteral("transcript"));
    }
    if (!script.is_running() || script.commands_answered() == 0)
        return link_loss::ends_reopens;
    link_was_lost = true;
    next_step.reset();
    return link_loss::goes_on;
}

void expertCtrlr::leave_cur_op_gracefully(const QString& status) {
    link_was_lost = false;
    context.link.stop_timers();
    context.link.abandon_command();
    if (!status.isEmpty())
        set_status_msg(status);
    context.view.show_busy(false);
    context.view.show_toast(QStringLiteral(""));
    script.stop();
    next_step.reset();
    state.cur_step = idle;
    state.no_confirm_count = 0;
    state.obd_msgs.clear();
    if (!running)
        return;
    running = false;
    context.view.reload(QStringLiteral("operation"));
    if (operation_ended)
        operation_ended(done);
}

void expertCtrlr::print_cmd_highlighted(const QString& command) {
    own.lines.add_command(command);
    context.view.reload(QStringLiteral("transcript"));
}
