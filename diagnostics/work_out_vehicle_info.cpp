#include "diagnostics/car_presence.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/vin.h"

#include <QRegularExpression>

namespace brivant {

namespace {

QString name_of(diagnostic_talk& car, const obd_group& ecu) {
    const QString label = car.toolies.l_pull_ECU(ecu.header);
    if (ecu.header.isEmpty())
        return QStringLiteral("Car"); // a chip that shows no headers: who answers cannot be told
    return label.isEmpty() ? ecu.header : label;
}

// Any answer is let through for this command, also a late "OK" to the one before, and noise. A number without
// its unit beside other lines may be the half of one.
QString voltage_in(const QString& text) {
    static const QRegularExpression volts(QStringLiteral("^\\d+(\\.\\d+)?V$"),
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression number(QStringLiteral("^\\d+(\\.\\d+)?$"));
    if (number.match(text).hasMatch())
        return text;
    return text.split(u'\r').filter(volts).value(0, not_available);
}

void voltage_answered(diagnostic_talk& car, const reply& answer) {
    if (answer.is_none())
        throw left{QStringLiteral("Unable to connect to interface ... Timed out .. Try again")};
    const QString voltage = voltage_in(answer.text());
    if (voltage == not_available) {
        car.show("Voltage not available for this vehicle ");
    } else {
        car.show(fill(QStringLiteral("Got proper reply: (%@)"), {answer.text()}));
    }
    car.tell(part::vehicle, value_row{{}, QStringLiteral("Voltage"), voltage, {}});
}

void value_answered(diagnostic_talk& car, const reply& what_came, const QString& header, const QString& pid) {
    answer told{QStringLiteral("01") + pid, what_came, header, {}};
    const QString data = what_came.holds_nothing()
                             ? QString()
                             : what_came.value_of(what_came.ecu(header), QStringLiteral("41"));
    if (data.startsWith(QStringLiteral("41") + pid)) {
        const QString value = car.toolies.translateResponse(data);
        if (value != no_reply)
            told.rows += value_row{pid, car.toolies.get_pid_name_with_pid(pid), value, {}};
    }
    car.tell(part::vehicle, told);
}

} // namespace

talk work_out_vehicle_info(diagnostic_talk& car) {
    co_await car.ready("Starting Read vehicle Info");
    // As they are now; what is known from earlier is not shown as this car's answer.
    const obd_groups ecus = car.state.times_told() > 0 ? car.state.available_pids() : obd_groups();
    QStringList supporting;
    qsizetype pids = 0;
    for (const obd_group& ecu : ecus) {
        supporting +=
            QStringLiteral("%1: %2 PIDs").arg(name_of(car, ecu), QString::number(ecu.pidSet.size()));
        pids += ecu.pidSet.size();
    }
    car.tell(part::vehicle, value_row{{},
                                      QStringLiteral("No of ECUS"),
                                      QString::number(ecus.size()),
                                      QStringLiteral("Supporting ") + supporting.join(QLatin1String(", "))});

    co_await car.at("AT H1", "OK");
    const reply volts = co_await car.at("AT RV", "8|9|1");
    voltage_answered(car, volts);
    car_presence presence(car);
    reply vin;
    co_await presence.ask(car.as_shown("09 02|12.0"), false, vin);
    const value_row vin_row{{}, QStringLiteral("VIN"), vin_of(vin), {}};
    car.tell(part::vehicle, {QStringLiteral("0902"), vin, {}, {vin_row}});

    if (ecus.isEmpty())
        co_await make_sure_the_car_answers(car);
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
        car.tell(part::vehicle,
                 ecu_row{ecu.header, name_of(car, ecu), ecu.pidSet.size(), &ecu == &ecus.first()});
        for (qsizetype place = 0; place < ecu.pidSet.size(); ++place) {
            const QString pid = ecu.pidSet[place];
            reply answer;
            co_await presence.ask(car.as_shown(QStringLiteral("01 %1 ").arg(pid)), true, answer);
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

} // namespace brivant
