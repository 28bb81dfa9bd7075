#include "diagnostics/diagnostic_talk.h"

#include "base/string_table.h"
#include "obd/reply_text.h"
#include "obd/trouble_codes.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr unsigned group_size = 0x20;
constexpr unsigned last_group = 0xE0;
constexpr qsizetype frame_map_at = 6; // after "42", the group and the frame number
constexpr const char* pending_not_received = "Failed to receive the Pending error codes";

// The decoder of pending codes reads replies without headers: each ECU's answer is handed to it on its own.
// An answer that lacks frames is left out: the rest of it would read as codes that nobody sent.
bool list_pending(diagnostic_talk& car, const reply& pending, QList<result_row>& rows) {
    car.load_the_codes();
    car.append_to_log(
        fill(QStringLiteral("------Pending Codes read:%@------------- \n"), {car.todays_date()}));
    if (pending.holds_nothing())
        return true;
    const auto list = [&](const QString& text, const QString& header) {
        for (const QString& code : car.toolies.work_reply_to_error_codes_pid(QStringLiteral("07"), text)) {
            if (code == QLatin1String("P0000"))
                continue; // padding, no code
            car.append_to_log(
                fill(QStringLiteral("%@    %@\n"), {code, look_upCode(code, car.results.P0_Codes)}));
            rows += code_row{code, header};
        }
    };
    if (!pending.headers_shown()) {
        const bool is_long = pending.text().contains(u':');
        if (is_long && pending.data_without_headers(QStringLiteral("47")).isEmpty())
            return false;
        list(pending.text(), QString());
        return true;
    }
    bool all_whole = true;
    for (const ecu_said& ecu : pending.ecus()) {
        if (is_can(ecu.protocol) && !ecu.is_whole()) {
            all_whole = false;
            continue;
        }
        QStringList lines;
        for (const QString& body : ecu.bodies)
            lines += data_of_single_message(body, ecu.protocol);
        list(is_can(ecu.protocol) ? ecu.data : lines.join(u'\r'), ecu.header);
    }
    return all_whole;
}

// The engine's answer, with or without headers.
QString engine_value(const reply& answer) {
    return answer.value_of(answer.engine(), QStringLiteral("42"));
}

QString freezing_code(const reply& frame) {
    const QString data = frame.holds_nothing() ? QString() : engine_value(frame);
    const QString code = data.mid(frame_map_at, 4);
    const bool is_code =
        data.startsWith(QLatin1String("4202")) && code.size() == 4 && code != QLatin1String("0000");
    return is_code ? pull_DTC_code(code) : QString();
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
value_row freeze_item(diagnostic_talk& car, const reply& answer, const QString& pid) {
    QString this_label = car.toolies.get_pid_name_with_pid(pid);
    const QString data = answer.holds_nothing() ? QString() : engine_value(answer);
    QString value = no_reply;
    if (data.startsWith(QLatin1String("42")) && data.size() >= frame_map_at) {
        QString live = data.first(4) + data.sliced(frame_map_at);
        value = car.toolies.translateResponse(live.replace(QLatin1String("\r\r"), QLatin1String("\r")));
    }
    if (value != no_reply)
        return {pid, this_label, value, {}};
    if (!answer.holds_nothing() || answer.is_none())
        this_label += u' ';
    return {pid, this_label, not_available, {}};
}

void told(diagnostic_talk& car, bool car_answered) {
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
    reply status = co_await car.ask_as_shown("01 01|12.0");
    if (status.no_data()) {
        co_await car.wait_longer();
        status = co_await car.ask_as_shown("01 01|12.0");
    }
    car.show(fill(QStringLiteral("Got proper reply: (%@)"), {status.text()}));
    bool car_answered = !status.holds_nothing();

    const reply codes = co_await car.ask_as_shown("07");
    QList<result_row> rows;
    car.results.pending_received = !codes.is_none() && list_pending(car, codes, rows);
    car_answered |= !codes.holds_nothing();
    car.show(car.results.pending_received ? "Codes read!. Scroll for full description"
                                          : pending_not_received);
    car.tell(part::pending, {QStringLiteral("07"), codes, {}, rows});

    const reply frame = co_await car.ask_as_shown("02 02 00");
    car_answered |= !frame.holds_nothing();
    const QString code = freezing_code(frame);
    if (code.isEmpty()) {
        const words_row none{QStringLiteral("Not Supported or Data Not Available")};
        car.tell(part::freeze, {freezing_code_request, frame, {}, {none}});
        co_return told(car, car_answered);
    }

    co_await car.at("AT H1", "OK");
    obd_groups parameters;
    for (unsigned group = 0; group <= last_group; group += group_size) {
        const QString map = convertByte2HexStr(group);
        if (group > 0 && !is_map_announced(parameters, group))
            break;
        const reply maps = co_await car.ask_as_shown(QStringLiteral("02 %1 00").arg(map));
        if (group == 0 && maps.holds_nothing()) { // without it there is no frame to show
            car.view.show_message(QString(), QStringLiteral("Not Supported or Not Available"));
            if (maps.is_none())
                throw left{};
            co_return told(car, car_answered);
        }
        add_supported_pids(parameters, maps, maps.text(), QStringLiteral("42") + map, frame_map_at, group);
    }

    co_await car.at("AT H0", "OK");
    car.load_the_codes();
    const value_row freezing{{}, QStringLiteral("Freezed by"), code, look_upCode(code, car.results.P0_Codes)};
    car.tell(part::freeze, {freezing_code_request, frame, {}, {freezing}});
    const QStringList pids = to_ask(car, parameters);
    for (qsizetype asked = 0; asked < pids.size(); ++asked) {
        car.progress(asked, pids.size());
        const QString command = QStringLiteral("02 %1 00").arg(pids[asked]);
        const reply item = co_await car.at(command, positive_reply_of(command) + QStringLiteral("|7F|?"));
        const value_row row = freeze_item(car, item, pids[asked]);
        car.tell(part::freeze, {QStringLiteral("02") + pids[asked], item, {}, {row}});
    }
    car.progress(pids.size(), pids.size());
    told(car, car_answered);
}

} // namespace brivant
