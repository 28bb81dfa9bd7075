#include "diagnostics/diagnostic_talk.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/vin.h"

#include <QRegularExpression>

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

void voltage_answered(diagnostic_talk& car, const reply& answer) {
    if (answer.is_none())
        throw left{QStringLiteral("Unable to connect to interface ... Timed out .. Try again")};
    // Any answer is let through for this command, also a late "OK" to the one before, and noise.
    static const QRegularExpression volts(QStringLiteral("^\\d+(\\.\\d+)?V?$"),
                                          QRegularExpression::CaseInsensitiveOption);
    const QString voltage = answer.text().split(u'\r').filter(volts).value(0, not_available);
    if (voltage == not_available) {
        car.show("Voltage not available for this vehicle ");
    } else {
        car.show(fill(QStringLiteral("Got proper reply: (%@)"), {answer.text()}));
    }
    add_row(car, fill(QStringLiteral(" Voltage: %@"), {voltage}));
}

void vin_answered(diagnostic_talk& car, const reply& answer) {
    car.keep(result_list::vehicle, QStringLiteral("0902"), answer, car.results.vehInfoArray.size(), 1);
    add_row(car, fill(QStringLiteral(" VIN: %@"), {vin_of(answer)}));
}

void add_heading(diagnostic_talk& car, const obd_group& ecu, bool is_first) {
    // Every heading but the first has a blank before its closing dashes.
    const QString format = is_first ? QStringLiteral(" --- ECU(%@) %@--- |has %d available PIDs")
                                    : QStringLiteral(" --- ECU(%@) %@ --- |has %d available PIDs");
    add_row(car, fill(format, {ecu.header, name_of(car, ecu), QString::number(ecu.pidSet.size())}));
}

void value_answered(diagnostic_talk& car, const reply& answer, const QString& header, const QString& pid) {
    QString value = no_reply;
    if (!answer.holds_nothing()) {
        const QString data = answer.value_of(answer.ecu(header), QStringLiteral("41"));
        if (data.startsWith(QStringLiteral("41") + pid))
            value = car.toolies.translateResponse(data);
    }
    const int rows = value == no_reply ? 0 : 1;
    car.keep(result_list::vehicle, QStringLiteral("01") + pid, answer, car.results.vehInfoArray.size(), rows,
             header);
    if (rows > 0)
        add_row(car, fill(QStringLiteral("%@|%@|%@"), {pid, car.toolies.l_get_pid_name(pid, false), value}));
}

} // namespace

talk work_out_vehicle_info(diagnostic_talk& car) {
    co_await car.ready("Starting Read vehicle Info");
    const obd_groups ecus = car.state.available_pids(); // as they are now
    QStringList supporting;
    qsizetype pids = 0;
    for (const obd_group& ecu : ecus) {
        supporting += QStringLiteral("%1: %2 PIDs").arg(name_of(car, ecu)).arg(ecu.pidSet.size());
        pids += ecu.pidSet.size();
    }
    add_row(car, fill(QStringLiteral("No of ECUS : %d| Supporting %@"),
                      {QString::number(ecus.size()), supporting.join(QLatin1String(", "))}));

    co_await car.at("AT H1", "OK");
    const reply volts = co_await car.at("AT RV", "8|9|1");
    voltage_answered(car, volts);
    const reply vin = co_await car.ask_as_shown("09 02|12.0");
    vin_answered(car, vin);

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
            const reply answer = co_await car.ask_as_shown(QStringLiteral("01 %1 ").arg(pid));
            value_answered(car, answer, ecu.header, pid);
            car.progress(++asked, pids);
            car.show(fill(QStringLiteral("Sampling  PID(%@) for ECU(%@) %d of %d "),
                          {pid, ecu.header, QString::number(place + 1), QString::number(ecu.pidSet.size())}));
        }
    }
    console_log(QStringLiteral("work_out_vehInfo pids done #####"));
    car.show("Current task done!");
    car.write_report();
}
