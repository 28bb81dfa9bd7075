#include "expert/work_out_script_mode.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"

void work_out_script_mode::prepare(const expert_script& wanted) {
    script = wanted;
    is_expert_script = true;
    cur_task_done = false;
    answered_so_far = 0;
}

QString work_out_script_mode::failure_text() const {
    return QStringLiteral("work_out_script_mode::Did not fully complete [ %@ ]");
}

void work_out_script_mode::work_step(int step, const QString& reply) {
    console_log(QStringLiteral("work_out_script_mode:stepidx=%1 rcvd_msg=%2").arg(step).arg(reply));
    // clang-format off
    switch (step) { // the reply to            the next command
    case 0:  return start();                // the template at From
    case 1:  return answered(reply);        // the template at the next byte, at From again, or done
    default: return;                        // idle
    }
    // clang-format on
}

void work_out_script_mode::start() {
    show(QStringLiteral("Starting Expert script mode"));
    byte_idx = script.first_byte();
    loops_idx = 1;
    send_byte(1);
}

void work_out_script_mode::answered(const QString& reply) {
    ++answered_so_far;
    const QString cleaned = clean_a_reply(reply);
    const QString words = QString(cleaned).remove(u' '); // replies come with and without blanks
    if (words.contains(QLatin1String("UNABLETOCONNECT"))) {
        context.view.show_message(
            QString(),
            QStringLiteral("Did not get a reply from Car port.  Check ignition key is at least in position "
                           "2(right before crank) and pairing/connections"));
        return leave();
    }
    if (words.contains(QLatin1String("BUSINIT:")) && words.contains(QLatin1String("ERROR"))) {
        const QString text =
            fill(QStringLiteral("(%@)Setting OBD BUS to your Car's port FAILED ... Check and try again"),
                 {cleaned.trimmed()});
        leave(text);
        return context.view.show_message(QString(), text);
    }
    next_command();
}

void work_out_script_mode::next_command() {
    if (byte_idx < script.last_byte()) {
        ++byte_idx;
    } else {
        ++loops_idx;
        byte_idx = script.first_byte(); // each pass begins anew
    }
    if (loops_idx <= script.no_of_loops_script)
        return send_byte(1);
    is_expert_script = false;
    cur_task_done = true;
    show(QStringLiteral("Current Script completed"));
}

void work_out_script_mode::send_byte(int next_step_idx) {
    state.cur_step = next_step_idx;
    context.link.sendOBDcmd(script.command(byte_idx) + u'\r');
}
