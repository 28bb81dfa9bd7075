#include "initialisation/step_machine.h"

#include "base/string_table.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"

#include <algorithm>

void step_machine::run(const QString& reply) {
    try {
        work_step(state.cur_step, reply);
    } catch (const std::exception& failure) {
        const QString text = fill(failure_text(), {QString::fromUtf8(failure.what())});
        state.warn_no_reply = -1;
        leave(text);
        show(text);
        if (failure_has_box())
            context.view.show_message(QString(), text);
    }
}

void step_machine::send(int next, const QString& command, const QString& expected) {
    state.cur_step = next; // before sending: a simulated reply arrives inside the send
    context.link.sendOBDcmd_n(command + QLatin1Char('\r'), expected, false);
}

void step_machine::send_with_headers(int next, const QString& command, const QString& expected) {
    state.cur_step = next;
    context.link.sendOBDcmd_n(command + QLatin1Char('\r'), expected, true);
}

void step_machine::ask(int next, const QString& command) {
    if (state.headers_shown)
        send_with_headers(next, command);
    else
        send(next, command, positive_reply_of(command));
}

bool has_no_data(const QString& reply) {
    if (reply == no_reply || reply.contains(QLatin1String("NODATA")))
        return true;
    // A "?" of its own; beside data it is noise, which some adapters send after a reset.
    const QStringList lines = reply_lines(reply);
    return reply.contains(QLatin1Char('?')) &&
           std::none_of(lines.begin(), lines.end(), [](const QString& line) { return is_hex(line); });
}
