#include "diagnostics/diagnostic_talk.h"

#include "base/string_table.h"
#include "diagnostics/answer_faults.h"
#include "diagnostics/car_presence.h"
#include "obd/ecu_names.h"
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

answer list_pending_codes(diagnostic_talk& car, const reply& codes) {
    answer listed{QStringLiteral("07"), codes, {}, {}};
    car.results.pending_received = !codes.is_none() && list_pending(car, codes, listed.rows);
    const QStringList faults = faults_of(listed);
    car.results.pending_received &= faults.isEmpty() || !listed.rows.isEmpty() || codes.no_data();
    if (!faults.isEmpty() && listed.rows.isEmpty())
        listed.rows += not_read(faults);
    return listed;
}

// The freeze frame that is shown: the engine's, else that of the first ECU that holds one.
struct freeze_frame {
    QString ecu;  // "" where the adapter shows no headers
    QString code; // that froze it, "" when none is stored
    bool is_engines = true;
};

QString freezing_code(const QString& data) {
    const QString code = data.mid(frame_map_at, 4);
    const bool is_code =
        data.startsWith(QLatin1String("4202")) && code.size() == 4 && code != QLatin1String("0000");
    return is_code ? pull_DTC_code(code) : QString();
}

freeze_frame stored_frame(const reply& frame) {
    if (frame.holds_nothing())
        return {};
    if (!frame.headers_shown()) {
        for (const QString& line : frame.lines())
            if (const QString code = freezing_code(line); !code.isEmpty())
                return {{}, code};
        return {};
    }
    const ecu_said* engine = frame.engine();
    const ecu_said* holder =
        engine && !freezing_code(engine->value()).isEmpty()
            ? engine
            : frame.first([](const ecu_said& ecu) { return !freezing_code(ecu.value()).isEmpty(); });
    return holder ? freeze_frame{holder->header, freezing_code(holder->value()), holder == engine}
                  : freeze_frame();
}

QStringList to_ask(diagnostic_talk& car, const obd_groups& parameters, const freeze_frame& frame) {
    const auto holder = std::find_if(parameters.begin(), parameters.end(), [&](const obd_group& ecu) {
        return same_ecu(ecu.header, frame.ecu, car.link.adapter().cur_protocol());
    });
    QStringList pids;
    if (!frame.is_engines && holder != parameters.end())
        pids = holder->pidSet;
    else if (frame.is_engines && !parameters.isEmpty())
        pids = parameters[car.toolies.findEngineEcuIdx(parameters)].pidSet;
    pids.removeIf([](const QString& pid) {
        return pid == QLatin1String("02") ||
               convertStr2Byte(pid) % group_size == 0; // the code itself; the maps
    });
    return pids;
}

// A frame's value reads like a live one once its frame number is taken out.
value_row freeze_item(diagnostic_talk& car, const reply& answer, const QString& pid,
                      const freeze_frame& frame) {
    QString this_label = car.toolies.get_pid_name_with_pid(pid);
    const ecu_said* who = frame.is_engines ? answer.engine() : answer.ecu(frame.ecu);
    const QString data = answer.holds_nothing() ? QString() : answer.value_of(who, QStringLiteral("42"));
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
        car.give_up_the_car();
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
    const answer listed = list_pending_codes(car, codes);
    car_answered |= !codes.holds_nothing();
    car.show(car.results.pending_received ? "Codes read!. Scroll for full description"
                                          : pending_not_received);
    car.tell(part::pending, listed);

    const reply stored = co_await car.ask_as_shown("02 02 00");
    car_answered |= !stored.holds_nothing();
    if (codes.no_data() && stored.no_data()) // which a car without codes may say, too
        co_await make_sure_the_car_answers(car);
    const freeze_frame frame = stored_frame(stored);
    if (frame.code.isEmpty()) {
        const words_row none{QStringLiteral("Not Supported or Data Not Available")};
        car.tell(part::freeze, {freezing_code_request, stored, {}, {none}});
        co_return told(car, car_answered);
    }
    const value_row freezing{{}, QStringLiteral("Freezed by"), frame.code, car.description_of(frame.code)};
    car.tell(part::freeze, {freezing_code_request, stored, frame.ecu, {freezing}});

    co_await car.at("AT H1", "OK");
    obd_groups parameters;
    for (unsigned group = 0; group <= last_group; group += group_size) {
        const QString map = convertByte2HexStr(group);
        if (group > 0 && !is_map_announced(parameters, group))
            break;
        const reply maps = co_await car.ask_as_shown(QStringLiteral("02 %1 00").arg(map));
        car.tell(part::freeze,
                 {QStringLiteral("02") + map, maps, maps.headers_shown() ? frame.ecu : QString(), {}});
        if (group == 0 && maps.holds_nothing()) { // without it there is no frame to show
            car.view.show_message(QString(), QStringLiteral("Not Supported or Not Available"));
            if (maps.is_none())
                throw left{};
            co_return told(car, car_answered);
        }
        add_supported_pids(parameters, maps, maps.text(), QStringLiteral("42") + map, frame_map_at, group);
    }

    if (frame.is_engines) // else only its header tells the ECU's values from the engine's
        co_await car.at("AT H0", "OK");
    const QStringList pids = to_ask(car, parameters, frame);
    for (qsizetype asked = 0; asked < pids.size(); ++asked) {
        car.progress(asked, pids.size());
        const QString command = QStringLiteral("02 %1 00").arg(pids[asked]);
        const reply item = co_await car.at(command, positive_reply_of(command) + QStringLiteral("|7F|?"));
        const value_row row = freeze_item(car, item, pids[asked], frame);
        const QString whose = item.headers_shown() ? frame.ecu : QString();
        car.tell(part::freeze, {QStringLiteral("02") + pids[asked], item, whose, {row}});
    }
    car.progress(pids.size(), pids.size());
    told(car, car_answered);
}

} // namespace brivant
