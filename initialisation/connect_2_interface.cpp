#include "initialisation/connect_2_interface.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"

namespace {
constexpr int most_fixed_protocol_rounds = 20;
}

connect_2_interface::connect_2_interface(operation_context& its_context, task_controller& its_controller,
                                         inner_process_pid_support& its_pid_loop)
    : step_machine(its_context, its_controller), pid_loop(its_pid_loop) {}

QString connect_2_interface::failure_text() const {
    return QStringLiteral("connect_2_interface::Did not fully complete [ %@ ]");
}

void connect_2_interface::work_step(int step, const QString& reply) {
    state.warn_no_reply = 1;
    // clang-format off
    switch (step) { // the reply to          what it tells                      the next command
    case 0:   reset_adapter();                                         return send(1,   is_reset_wanted() ? "AT Z" : "AT E0", "OK|ELM");
    case 1:   state.adapter_known |= reply != no_reply; /* AT Z */     return send(2,   "AT E0", "OK");
    case 2:   echo_is_off();                            /* AT E0 */    return send(250, "AT I", "ELM");
    case 250: keep_interface(reply);                    /* AT I */     return send(3,   "AT DP", "AUTO|ISO|SAE");
    case 3:   return protocol_described(reply);         /* AT DP */
    case 251:                                           /* AT SP A3 */ return send(3,   "AT DP", "AUTO|ISO|SAE");
    case 333: show(has_no_data(reply) ? "AT H1 not supported by current chip"
                                      : "AT H1 replied OK"); /* AT H1 */ return send(301, "AT DPN", "A");
    case 301: state.cur_protocol = protocol_number(reply); /* AT DPN */ return send(4,   "01 00|12.0", "4100");
    case 4:   return first_pids_answered(reply);        /* 01 00 */
    case 401: return start_pid_loop(reply);             /* AT DPN */
    case 402: return further_pids_answered(reply, 1);   /* 01 20 */
    case 403: return further_pids_answered(reply, 2);   /* 01 40 */
    case 5:   return hand_over();                       /* the supported-PID loop */
    default:  return;                                   // idle
    }
    // clang-format on
}

void connect_2_interface::reset_adapter() {
    state.cur_protocol = -1;
    protocol_was_refused = false;
    fixed_protocol_rounds = 0;
}

bool connect_2_interface::is_reset_wanted() const {
    return !state.adapter_known && context.link.may_be_reset();
}

void connect_2_interface::echo_is_off() {
    show("Got a ECHO off from ELM chip");
}

void connect_2_interface::keep_interface(const QString& reply) {
    show(fill(QStringLiteral("Interface : %@"), {reply}));
    context.interfaceLbl = reply;
    if (reply != no_reply && !reply.contains(QLatin1String("OK")))
        state.interface_description = reply.left(80);
    context.view.reload(QStringLiteral("labels"));
}

void connect_2_interface::protocol_described(const QString& reply) {
    if (reply == no_reply) {
        if (protocol_was_refused) {
            show("The adapter does not tell its protocol: unplug it, plug it in again and retry");
            return leave();
        }
        protocol_was_refused = true;
    } else if (state.protocol_description.isEmpty()) {
        show(fill(QStringLiteral(" %@"), {reply}));
        state.protocol_description = reply.left(80);
        context.protocolLbl = reply;
        context.view.reload(QStringLiteral("labels"));
    }
    if (reply.toUpper().contains(QLatin1String("AUTO")))
        return send(333, "AT H1", "OK");
    if (++fixed_protocol_rounds > most_fixed_protocol_rounds)
        throw step_failure(
            QStringLiteral("the adapter does not go back to automatic protocol search: unplug it, plug "
                           "it in again and retry"));
    send(251, "AT SP A3", "OK"); // a fixed protocol: back to automatic, ISO 9141-2 tried first
}

// The number after the "A" of an automatically found protocol ("A6" gives 6); -1 when it was not told.
int connect_2_interface::protocol_number(const QString& reply) const {
    if (reply.size() < 2 || reply.at(0).toUpper() != QLatin1Char('A') ||
        !is_hex(QStringView(reply).sliced(1, 1)))
        return -1; // given up, or no data
    return static_cast<int>(convertStr2Byte(QStringView(reply).sliced(1).left(2)));
}

// While a lost link is opened again by itself the car may be off: that is waited for, and needs no notice.
void connect_2_interface::tell_failure(const QString& text) {
    if (!context.link.is_reconnecting())
        context.view.show_message(QString(), text);
}

void connect_2_interface::first_pids_answered(const QString& reply) {
    if (reply == no_reply) {
        tell_failure(localised(QStringLiteral("DLG_FAILED_RCV_PIDS")));
        return leave();
    }
    if (has_no_data(reply)) {
        show("No data for [01 00] .. trying next");
    } else {
        show(fill(QStringLiteral("Initial  reply: (%@)"), {reply}));
        context.toolies.handle_00_replies(reply, 0);
        const int ecus = count_items_in_Str(reply, QStringLiteral("\r"));
        show(fill(QStringLiteral("No of ECUS: %d"), {QString::number(ecus)}));
    }
    send(401, "AT DPN", "A");
}

void connect_2_interface::start_pid_loop(const QString& reply) {
    state.cur_protocol = protocol_number(reply);
    if (state.cur_protocol == -1) {
        tell_failure(localised(QStringLiteral("DLG_FAILED_RCV_PIDS")));
        return leave();
    }
    const QString name =
        context.toolies.lists().line(QStringLiteral("SUP_PROTOCOLS"), state.cur_protocol).value_or(reply);
    show(fill(QStringLiteral("Interface : %@"), {name}));
    state.protocol_description = name;
    context.protocolLbl = name;
    context.view.reload(QStringLiteral("labels"));
    pid_loop.start(QStringLiteral("01"), QString(), 5, [](const obd_groups&) {});
}

// No step leads here: the supported-PID loop asks for the further groups.
void connect_2_interface::further_pids_answered(const QString& reply, int group) {
    if (reply == no_reply) {
        tell_failure(QStringLiteral("Failed to receive available PIDs "));
        return leave();
    }
    if (reply.contains(QLatin1String("NODATA"))) {
        show(group == 1 ? "No data for [01 20] .. trying next" : "No data for [01 40] .. trying next");
    } else {
        show(fill(QStringLiteral("Initial  reply: (%@)"), {reply}));
        context.toolies.handle_00_replies(reply, group);
    }
    if (group == 1 && context.toolies.is_this_code_available(QStringLiteral("40"), 1))
        return send_with_headers(403, "01 40");
    send(5, "AT H0", "OK");
}

void connect_2_interface::hand_over() {
    show("Got the PIDs.. starting current task");
    if (!state.available_pids.isEmpty() && !context.toolies.save_pids_available(state.available_pids))
        console_log(QStringLiteral(
            "reacCods>m::connect_2_interface >> Did not save avail pids to VEHICLES.XTRA_INFO"));
    state.adapter_ready = true;
    context.link.far_end_changed();
    state.no_confirm_count = 0;
    state.cur_step = 0;
    state.cur_task = state.cur_op;
    controller.work_current_task(QString());
}
