#include "diagnostics/work_out_pending_freeze.h"

#include "base/string_table.h"
#include "obd/ecu_names.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include "obd/trouble_codes.h"
#include "obd/whole_answer.h"

#include <algorithm>

namespace {
constexpr int most_retries = 1;
constexpr unsigned group_size = 0x20;
constexpr unsigned last_group = 0xE0;
constexpr qsizetype frame_map_at = 6; // after "42", the group and the frame number
constexpr const char* pending_not_received = "Failed to receive the Pending error codes";
} // namespace

work_out_pending_freeze::work_out_pending_freeze(operation_context& its_context, diagnostic_host& its_host)
    : step_machine(its_context, its_host), host(its_host), results(its_host.results()) {}

QString work_out_pending_freeze::failure_text() const {
    return QStringLiteral("work_out_pending_freeze::Did not fully complete [ %@ ]");
}

void work_out_pending_freeze::work_step(int step, const QString& reply) {
    // clang-format off
    switch (step) { // the reply to                   the next command
    case 0: return start();                        // "01 01"
    case 1: return monitor_status_answered(reply); // 01 01:    "07", or "AT ST FF" and once more
    case 2: return pending_codes_answered(reply);  // 07:       "02 02 00", the code that stored the frame
    case 4: return freezing_code_answered(reply);  // 02 02 00: "AT H1"
    case 5: return ask(6, "02 00 00");             // AT H1:    "02 00 00", the frame's parameters
    case 6: return parameters_answered(reply);     // 02 gg 00: the next map, then "AT H0"
    case 7: return next_parameter(reply);          // AT H0, 02 pp 00: the next parameter
    default: return;                               // idle
    }
    // clang-format on
}

void work_out_pending_freeze::progress(int done, int total) {
    results.progress_done = done;
    results.progress_total = total;
    context.view.reload(QStringLiteral("progress"));
}

void work_out_pending_freeze::start() {
    show("Starting Read Pending/Freeze");
    if (!host.connect_first())
        ask(1, "01 01|12.0"); // headers are on or off, as the operation before left them
}

void work_out_pending_freeze::monitor_status_answered(const QString& reply) {
    if (reply.contains(QLatin1String("NODATA")) && no_data_retries < most_retries) {
        ++no_data_retries;
        host.adapter_slowed();
        return send(0, "AT ST FF", "OK");
    }
    show(fill(QStringLiteral("Got proper reply: (%@)"), {reply}));
    car_answered = !has_no_data(reply);
    ask(2, "07");
}

void work_out_pending_freeze::pending_codes_answered(const QString& reply) {
    results.pending_received = reply != no_reply && list_pending(reply);
    car_answered |= !has_no_data(reply);
    show(results.pending_received ? "Codes read!. Scroll for full description" : pending_not_received);
    results.kept[result_list::pending] = {{QStringLiteral("07"), reply_to_keep(reply, context.link),
                                           form_of(state), QString(), 0, results.pendingArray.size()}};
    context.view.reload(QStringLiteral("pending"));
    ask(4, "02 02 00");
}

// The decoder of pending codes reads replies without headers: each ECU's answer is handed to it on its own.
// An answer that lacks frames is left out: the rest of it would read as codes that nobody sent.
bool work_out_pending_freeze::list_pending(const QString& reply) {
    host.load_the_codes();
    host.append_to_log(
        fill(QStringLiteral("------Pending Codes read:%@------------- \n"), {host.todays_date()}));
    if (has_no_data(reply))
        return true;
    const auto list = [&](const QString& text, const QString& header) {
        for (const QString& code :
             context.toolies.work_reply_to_error_codes_pid(QStringLiteral("07"), text)) {
            if (code == QLatin1String("P0000"))
                continue; // padding, no code
            host.append_to_log(
                fill(QStringLiteral("%@    %@\n"), {code, look_upCode(code, results.P0_Codes)}));
            results.pendingArray += fill(QStringLiteral("%@|%@"), {code, header});
        }
    };
    if (!state.headers_shown) {
        if (reply.contains(u':') && whole_data_without_headers(reply, QStringLiteral("47")).isEmpty())
            return false;
        list(reply, QString());
        return true;
    }
    const bool framed = is_can(state.cur_protocol);
    bool all_whole = true;
    for (const obd_group& ecu : context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply))) {
        if (framed && !is_whole_can_answer(ecu.pidSet)) {
            all_whole = false;
            continue;
        }
        QStringList lines;
        for (const QString& body : ecu.pidSet)
            lines += context.toolies.data_of_single_message(body);
        list(framed ? context.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet) : lines.join(u'\r'),
             ecu.header);
    }
    return all_whole;
}

// The data of the engine ECU in a reply, with or without headers.
QString work_out_pending_freeze::engine_data(const QString& reply) const {
    if (!state.headers_shown)
        return whole_data_without_headers(reply, QStringLiteral("42"));
    const obd_groups ecus = context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply));
    if (ecus.isEmpty())
        return {};
    return context.toolies.data_of_answer(ecus[context.toolies.findEngineEcuIdx(ecus)].pidSet);
}

void work_out_pending_freeze::freezing_code_answered(const QString& reply) {
    car_answered |= !has_no_data(reply);
    const QString data = has_no_data(reply) ? QString() : engine_data(reply);
    const QString code = data.mid(frame_map_at, 4);
    results.kept[result_list::freeze] = {
        {QStringLiteral("020200"), reply_to_keep(reply, context.link), form_of(state), QString(), 0, 1}};
    if (!data.startsWith(QLatin1String("4202")) || code.size() < 4 || code == QLatin1String("0000"))
        return no_frame();
    freezing_code = pull_DTC_code(code);
    group = 0;
    parameters.clear();
    send(5, "AT H1", "OK");
}

void work_out_pending_freeze::no_frame() {
    results.freezeArray += QStringLiteral("Not Supported or Data Not Available");
    finish();
}

void work_out_pending_freeze::take_map(const QString& header, const QString& data) {
    if (!data.startsWith(QStringLiteral("42") + convertByte2HexStr(group)))
        return;
    auto known = std::find_if(parameters.begin(), parameters.end(), [&](const obd_group& entry) {
        return same_ecu(entry.header, header, state.cur_protocol);
    });
    if (known == parameters.end())
        known = parameters.insert(parameters.end(), {header, {}});
    known->pidSet += pids_of_bitmap(data.mid(frame_map_at, 8), group);
}

void work_out_pending_freeze::parameters_answered(const QString& reply) {
    // Without the first map there is no frame to show; a further one that was announced may be missing.
    if (has_no_data(reply) && group == 0) {
        context.view.show_message(QString(), QStringLiteral("Not Supported or Not Available"));
        return reply == no_reply ? leave() : finish();
    }
    if (!state.headers_shown)
        take_map(QString(), reply);
    else
        for (const obd_group& ecu : context.toolies.pullObdMsgsGrouped(context.toolies.pullObdMsgs(reply)))
            take_map(ecu.header, context.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet));
    const QString announced = convertByte2HexStr(group + group_size);
    const bool another =
        group < last_group && std::any_of(parameters.begin(), parameters.end(),
                                          [&](const auto& ecu) { return ecu.pidSet.contains(announced); });
    if (another) {
        group += group_size;
        return ask(6, QStringLiteral("02 %1 00").arg(announced));
    }
    asked = 0;
    to_ask = parameters.isEmpty() ? QStringList()
                                  : parameters[context.toolies.findEngineEcuIdx(parameters)].pidSet;
    to_ask.removeIf([](const QString& pid) {
        return pid == QLatin1String("02") ||
               convertStr2Byte(pid) % group_size == 0; // the code itself; the maps
    });
    send(7, "AT H0", "OK");
}

void work_out_pending_freeze::next_parameter(const QString& reply) {
    if (results.freezeArray.isEmpty()) {
        host.load_the_codes();
        results.freezeArray += fill(QStringLiteral("Freezed by: %@|%@"),
                                    {freezing_code, look_upCode(freezing_code, results.P0_Codes)});
    } else {
        results.kept[result_list::freeze] += {QStringLiteral("02%1").arg(to_ask[asked]),
                                              reply_to_keep(reply, context.link),
                                              form_of(state),
                                              QString(),
                                              results.freezeArray.size(),
                                              1};
        add_freeze_item(reply, context.toolies.get_pid_name_with_pid(to_ask[asked++]));
    }
    progress(static_cast<int>(asked), static_cast<int>(to_ask.size()));
    context.view.reload(QStringLiteral("freeze"));
    if (asked == to_ask.size())
        return finish();
    const QString command = QStringLiteral("02 %1 00").arg(to_ask[asked]);
    send(7, command, positive_reply_of(command) + QStringLiteral("|7F|?"));
}

// A frame's value reads like a live one once its frame number is taken out.
void work_out_pending_freeze::add_freeze_item(const QString& reply, const QString& this_label) {
    const bool no_data = reply != no_reply && has_no_data(reply);
    const QString data = no_data || reply == no_reply ? QString() : engine_data(reply);
    QString value = no_reply;
    if (data.startsWith(QLatin1String("42")) && data.size() >= frame_map_at) {
        QString live = data.first(4) + data.sliced(frame_map_at);
        value = context.toolies.translateResponse(live.replace(QLatin1String("\r\r"), QLatin1String("\r")));
    }
    if (no_data)
        results.freezeArray += fill(QStringLiteral("%@: N/A"), {this_label});
    else if (value == no_reply)
        results.freezeArray += fill(QStringLiteral("%@ : N/A"), {this_label});
    else
        results.freezeArray += fill(QStringLiteral("%@: %@"), {this_label, value});
}

void work_out_pending_freeze::finish() {
    context.view.reload(QStringLiteral("pending"));
    context.view.reload(QStringLiteral("freeze"));
    if (car_answered)
        host.write_report();
    // Neither says that there are no codes.
    if (!results.pending_received)
        return leave(QLatin1String(pending_not_received));
    if (!car_answered)
        throw step_failure(no_ecu_answers);
    context.view.play_sound(sound_done);
    host.task_done();
}
