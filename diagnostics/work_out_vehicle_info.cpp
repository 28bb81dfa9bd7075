#include "diagnostics/diagnostic_talk.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include "obd/trouble_codes.h"
#include "obd/vin.h"
#include "obd/whole_answer.h"

#include <QRegularExpression>
#include <algorithm>

namespace {

QString name_of(diagnostic_talk& car, const obd_group& ecu) {
    const QString label = car.toolies.l_pull_ECU(ecu.header);
    if (ecu.header.isEmpty())
        return QStringLiteral("Car"); // a chip that shows no headers: who answers cannot be told
    return label.isEmpty() ? ecu.header : label;
}

void add_row(diagnostic_talk& car, const QString& row) {
    car.results.vehInfoArray += row;
    car.view.reload(QStringLiteral("vehicle"));
}

void voltage_answered(diagnostic_talk& car, const QString& reply) {
    if (reply == no_reply)
        throw left{QStringLiteral("Unable to connect to interface ... Timed out .. Try again")};
    // Any answer is let through for this command, also a late "OK" to the one before, and noise.
    static const QRegularExpression volts(QStringLiteral("^\\d+(\\.\\d+)?V?$"),
                                          QRegularExpression::CaseInsensitiveOption);
    const QString voltage = reply.split(u'\r').filter(volts).value(0, not_available);
    if (voltage == not_available) {
        car.show("Voltage not available for this vehicle ");
    } else {
        car.show(fill(QStringLiteral("Got proper reply: (%@)"), {reply}));
    }
    add_row(car, fill(QStringLiteral(" Voltage: %@"), {voltage}));
}

// The VIN decoder reads replies without headers: on CAN the byte count and numbered lines, before that the
// data of each line.
QString vin_reply_without_headers(diagnostic_talk& car, const QString& reply) {
    if (!car.state.headers_shown) {
        const QStringList messages = reply_lines(reply);
        if (is_whole_legacy_vin(messages))
            return messages.join(u'\r');
        return whole_data_without_headers(reply, QStringLiteral("4902")).isEmpty() ? QString() : reply;
    }
    const obd_groups ecus = car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply));
    const auto data_of = [&](const obd_group& ecu) {
        return car.toolies.l_pullOBDFromSingleGroupedMsg(ecu.pidSet);
    };
    auto chosen = std::find_if(ecus.begin(), ecus.end(), [&](const obd_group& ecu) {
        return car.toolies.isThisEngineHeader(ecu.header) && data_of(ecu).startsWith(QLatin1String("4902"));
    });
    if (chosen == ecus.end())
        chosen = std::find_if(ecus.begin(), ecus.end(), [&](const obd_group& ecu) {
            return data_of(ecu).startsWith(QLatin1String("4902"));
        });
    if (chosen == ecus.end())
        return {};
    if (!is_can(car.state.cur_protocol))
        return is_whole_legacy_vin(chosen->pidSet) ? chosen->pidSet.join(u'\r') : QString();
    if (!is_whole_can_answer(chosen->pidSet))
        return {};
    const QString data = data_of(*chosen);
    const QString length = QString::number(data.size() / 2, 16).toUpper().rightJustified(3, u'0');
    return QStringLiteral("%1\r0:%2\r1:%3\r2:%4\r")
        .arg(length, data.mid(0, 12), data.mid(12, 14), data.mid(26, 14));
}

void vin_answered(diagnostic_talk& car, const QString& reply) {
    const QString plain = has_no_data(reply) ? QString() : vin_reply_without_headers(car, reply);
    const QString vin = plain.isEmpty() ? not_available : work_out_vin(plain);
    car.keep(result_list::vehicle, QStringLiteral("0902"), reply, car.results.vehInfoArray.size(), 1);
    add_row(car, fill(QStringLiteral(" VIN: %@"), {vin.isEmpty() ? not_available : vin}));
}

void add_heading(diagnostic_talk& car, const obd_group& ecu, bool is_first) {
    // Every heading but the first has a blank before its closing dashes.
    const QString format = is_first ? QStringLiteral(" --- ECU(%@) %@--- |has %d available PIDs")
                                    : QStringLiteral(" --- ECU(%@) %@ --- |has %d available PIDs");
    add_row(car, fill(format, {ecu.header, name_of(car, ecu), QString::number(ecu.pidSet.size())}));
}

QString answer_of(diagnostic_talk& car, const obd_group& ecu, const QString& reply) {
    if (!car.state.headers_shown)
        return whole_data_without_headers(reply, QStringLiteral("41"));
    const obd_groups answers = car.toolies.pullObdMsgsGrouped(car.toolies.pullObdMsgs(reply));
    const auto bodies = pull_dtcGruped_pidSet_by_ECU(answers, ecu.header, car.state.cur_protocol);
    return bodies ? car.toolies.data_of_answer(*bodies) : not_available;
}

void value_answered(diagnostic_talk& car, const QString& reply, const obd_group& ecu, const QString& pid) {
    QString value = no_reply;
    if (!has_no_data(reply)) {
        const QString data = answer_of(car, ecu, reply);
        if (data.startsWith(QStringLiteral("41") + pid))
            value = car.toolies.translateResponse(data);
    }
    const int rows = value == no_reply ? 0 : 1;
    car.keep(result_list::vehicle, QStringLiteral("01") + pid, reply, car.results.vehInfoArray.size(), rows,
             ecu.header);
    if (rows > 0)
        add_row(car, fill(QStringLiteral("%@|%@|%@"), {pid, car.toolies.l_get_pid_name(pid, false), value}));
}

} // namespace

talk work_out_vehicle_info(diagnostic_talk& car) {
    co_await car.ready("Starting Read vehicle Info");
    const obd_groups ecus = car.state.available_pids; // as they are now
    QStringList supporting;
    qsizetype pids = 0;
    for (const obd_group& ecu : ecus) {
        supporting += QStringLiteral("%1: %2 PIDs").arg(name_of(car, ecu)).arg(ecu.pidSet.size());
        pids += ecu.pidSet.size();
    }
    add_row(car, fill(QStringLiteral("No of ECUS : %d| Supporting %@"),
                      {QString::number(ecus.size()), supporting.join(QLatin1String(", "))}));

    co_await car.at("AT H1", "OK");
    voltage_answered(car, co_await car.at("AT RV", "8|9|1"));
    vin_answered(car, co_await car.ask_as_shown("09 02|12.0"));

    if (pids == 0) {
        console_log(QStringLiteral("work_out_vehInfo done No pids "));
        co_return car.write_report();
    }
    const char* words = "Sampling Supported PID(s) data ";
    qsizetype asked = 0;
    for (const obd_group& ecu : ecus) {
        if (ecu.pidSet.isEmpty())
            continue;
        car.show(std::exchange(words, "Sampling Next ECU PID(s) data "));
        add_heading(car, ecu, &ecu == &ecus.first());
        for (qsizetype place = 0; place < ecu.pidSet.size(); ++place) {
            const QString pid = ecu.pidSet[place];
            value_answered(car, co_await car.ask_as_shown(QStringLiteral("01 %1 ").arg(pid)), ecu, pid);
            car.progress(++asked, pids);
            car.show(fill(QStringLiteral("Sampling  PID(%@) for ECU(%@) %d of %d "),
                          {pid, ecu.header, QString::number(place + 1), QString::number(ecu.pidSet.size())}));
        }
    }
    console_log(QStringLiteral("work_out_vehInfo pids done #####"));
    car.show("Current task done!");
    car.write_report();
}
