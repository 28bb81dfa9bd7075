#include "diagnostics/diagnostic_talk.h"

#include "base/string_table.h"
#include "obd/ecu_names.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include "obd/trouble_codes.h"
#include "obd/whole_answer.h"

#include <algorithm>

namespace {

constexpr unsigned group_size = 0x20;
constexpr unsigned last_group = 0xE0;
constexpr qsizetype frame_map_at = 6; // after "42", the group and the frame number
constexpr const char* pending_not_received = "Failed to receive the Pending error codes";

// The decoder of pending codes reads replies without headers: each ECU's answer is handed to it on its own.
// An answer that lacks frames is left out: the rest of it would read as codes that nobody sent.
bool list_pending(diagnostic_talk& car, const QString& reply) {
    car.load_the_codes();
    car.append_to_log(
        fill(QStringLiteral("------Pending Codes read:%@------------- \n"), {car.todays_date()}));
    if (has_no_data(reply))
        return true;
    const auto list = [&](const QString& text, const QString& header) {
        for (const QString& code : car.toolies.work_reply_to_error_codes_pid(QStringLiteral("07"), text)) {
            if (code == QLatin1String("P0000"))
                continue; // padding, no code
            car.append_to_log(
                fill(QStringLiteral("%@    %@\n"), {code, look_upCode(code, car.results.P0_Codes)}));
            car.results.pendingArray += fill(QStringLiteral("%@|%@"), {code, header});
        }
    };
    if (!car.state.headers_shown) {
        if (reply.contains(u':') && whole_data_without_headers(reply, QStringLiteral("47")).isEmpty())
            return false;
        list(reply, QString());
        return true;
    }
    const bool framed = is_can(car.state.cur_protocol);
    bool all_whole = true;
    for (const obd_group& ecu : car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply))) {
        if (framed && !is_whole_can_answer(ecu.pidSet)) {
            all_whole = false;
            continue;
        }
        QStringList lines;
        for (const QString& body : ecu.pidSet)
            lines += car.toolies.data_of_single_message(body);
        list(framed ? car.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet) : lines.join(u'\r'), ecu.header);
    }
    return all_whole;
}

// The data of the engine ECU in a reply, with or without headers.
QString engine_data(diagnostic_talk& car, const QString& reply) {
    if (!car.state.headers_shown)
        return whole_data_without_headers(reply, QStringLiteral("42"));
    const obd_groups ecus = car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply));
    if (ecus.isEmpty())
        return {};
    return car.toolies.data_of_answer(ecus[car.toolies.findEngineEcuIdx(ecus)].pidSet);
}

QString freezing_code(diagnostic_talk& car, const QString& reply) {
    const QString data = has_no_data(reply) ? QString() : engine_data(car, reply);
    const QString code = data.mid(frame_map_at, 4);
    const bool is_code =
        data.startsWith(QLatin1String("4202")) && code.size() == 4 && code != QLatin1String("0000");
    return is_code ? pull_DTC_code(code) : QString();
}

void take_maps(diagnostic_talk& car, obd_groups& parameters, const QString& reply, unsigned group) {
    const auto take = [&](const QString& header, const QString& data) {
        if (!data.startsWith(QStringLiteral("42") + convertByte2HexStr(group)))
            return;
        auto known = std::find_if(parameters.begin(), parameters.end(), [&](const obd_group& entry) {
            return same_ecu(entry.header, header, car.state.cur_protocol);
        });
        if (known == parameters.end())
            known = parameters.insert(parameters.end(), {header, {}});
        known->pidSet += pids_of_bitmap(data.mid(frame_map_at, 8), group);
    };
    if (!car.state.headers_shown)
        return take(QString(), reply);
    for (const obd_group& ecu : car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply)))
        take(ecu.header, car.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet));
}

QStringList to_ask(diagnostic_talk& car, const obd_groups& parameters) {
    QStringList pids =
        parameters.isEmpty() ? QStringList() : parameters[car.toolies.findEngineEcuIdx(parameters)].pidSet;
    pids.removeIf([](const QString& pid) {
        return pid == QLatin1String("02") ||
               convertStr2Byte(pid) % group_size == 0; // the code itself; the maps
    });
    return pids;
}

// A frame's value reads like a live one once its frame number is taken out.
void add_freeze_item(diagnostic_talk& car, const QString& reply, const QString& pid) {
    const QString this_label = car.toolies.get_pid_name_with_pid(pid);
    const bool no_data = reply != no_reply && has_no_data(reply);
    const QString data = no_data || reply == no_reply ? QString() : engine_data(car, reply);
    QString value = no_reply;
    if (data.startsWith(QLatin1String("42")) && data.size() >= frame_map_at) {
        QString live = data.first(4) + data.sliced(frame_map_at);
        value = car.toolies.translateResponse(live.replace(QLatin1String("\r\r"), QLatin1String("\r")));
    }
    if (no_data)
        car.results.freezeArray += fill(QStringLiteral("%@: N/A"), {this_label});
    else if (value == no_reply)
        car.results.freezeArray += fill(QStringLiteral("%@ : N/A"), {this_label});
    else
        car.results.freezeArray += fill(QStringLiteral("%@: %@"), {this_label, value});
}

void told(diagnostic_talk& car, bool car_answered) {
    car.view.reload(QStringLiteral("pending"));
    car.view.reload(QStringLiteral("freeze"));
    if (car_answered)
        car.write_report();
    // Neither says that there are no codes.
    if (!car.results.pending_received)
        throw left{QLatin1String(pending_not_received)};
    if (!car_answered)
        throw step_failure(no_ecu_answers);
    car.view.play_sound(sound_done);
}

} // namespace

// Headers are on or off at first, as the operation before left them.
talk work_out_pending_freeze(diagnostic_talk& car) {
    co_await car.ready("Starting Read Pending/Freeze");
    QString status = co_await car.ask_as_shown("01 01|12.0");
    if (status.contains(QLatin1String("NODATA"))) {
        co_await car.wait_longer();
        status = co_await car.ask_as_shown("01 01|12.0");
    }
    car.show(fill(QStringLiteral("Got proper reply: (%@)"), {status}));
    bool car_answered = !has_no_data(status);

    const QString codes = co_await car.ask_as_shown("07");
    car.results.pending_received = codes != no_reply && list_pending(car, codes);
    car_answered |= !has_no_data(codes);
    car.show(car.results.pending_received ? "Codes read!. Scroll for full description"
                                          : pending_not_received);
    car.keep(result_list::pending, QStringLiteral("07"), codes, 0, car.results.pendingArray.size());
    car.view.reload(QStringLiteral("pending"));

    const QString frame = co_await car.ask_as_shown("02 02 00");
    car_answered |= !has_no_data(frame);
    car.keep(result_list::freeze, QStringLiteral("020200"), frame, 0, 1);
    const QString code = freezing_code(car, frame);
    if (code.isEmpty()) {
        car.results.freezeArray += QStringLiteral("Not Supported or Data Not Available");
        co_return told(car, car_answered);
    }

    co_await car.at("AT H1", "OK");
    obd_groups parameters;
    for (unsigned group = 0; group <= last_group; group += group_size) {
        const QString map = convertByte2HexStr(group);
        const bool is_announced = std::any_of(parameters.begin(), parameters.end(),
                                              [&](const obd_group& ecu) { return ecu.pidSet.contains(map); });
        if (group > 0 && !is_announced)
            break;
        const QString reply = co_await car.ask_as_shown(QStringLiteral("02 %1 00").arg(map));
        if (group == 0 && has_no_data(reply)) { // without it there is no frame to show
            car.view.show_message(QString(), QStringLiteral("Not Supported or Not Available"));
            if (reply == no_reply)
                throw left{};
            co_return told(car, car_answered);
        }
        take_maps(car, parameters, reply, group);
    }

    co_await car.at("AT H0", "OK");
    car.load_the_codes();
    car.results.freezeArray +=
        fill(QStringLiteral("Freezed by: %@|%@"), {code, look_upCode(code, car.results.P0_Codes)});
    const QStringList pids = to_ask(car, parameters);
    for (qsizetype asked = 0; asked < pids.size(); ++asked) {
        car.progress(asked, pids.size());
        car.view.reload(QStringLiteral("freeze"));
        const QString command = QStringLiteral("02 %1 00").arg(pids[asked]);
        const QString reply = co_await car.at(command, positive_reply_of(command) + QStringLiteral("|7F|?"));
        car.keep(result_list::freeze, QStringLiteral("02") + pids[asked], reply,
                 car.results.freezeArray.size(), 1);
        add_freeze_item(car, reply, pids[asked]);
    }
    car.progress(pids.size(), pids.size());
    told(car, car_answered);
}
