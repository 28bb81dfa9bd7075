#include "obd/readings/sampled_value.h"

#include "base/string_table.h"
#include "obd/number_text.h"
#include "obd/pid_translation.h"
#include "obd/standard_reading/pid_table.h"

#include <algorithm>
#include <limits>

namespace brivant {

namespace {

const QString fuel_economy = QStringLiteral("E4");
const QString boost = QStringLiteral("E5");

bool is_computed(const QString& pid) {
    return pid >= QLatin1String("E1") && pid <= QLatin1String("E8");
}

QString standard_unit(const QString& pid, unit_system units) {
    const auto rows = quantity_rows();
    const int number = first_of_run(pid.toInt(nullptr, 16));
    const auto first = std::find_if(rows.begin(), rows.end(),
                                    [number](const quantity_row& row) { return row.pid == number; });
    return first == rows.end() ? QString() : shown_unit_of(first->unit, units).name;
}

// Of the quantities that the car has, the first in the PID's unit: what is drawn keeps one unit.
const quantity* drawn_quantity(const pid_value& value, const QString& unit) {
    const auto drawn = std::find_if(value.quantities.begin(), value.quantities.end(),
                                    [&unit](const quantity& part) { return part.unit == unit; });
    return drawn == value.quantities.end() ? nullptr : &*drawn;
}

} // namespace

double sampled_number(const QString& reply, const sample_reading& reading, const text_resources& lists) {
    const QString pid = reading.by_standard ? sampled_pid(reply) : QString();
    if (!reading.by_standard || is_computed(pid))
        return get_OBDVal(reply, reading.units, lists);
    const pid_value value = read_pid_value(reply.trimmed(), {reading.units, reading.scales});
    const quantity* drawn = drawn_quantity(value, standard_unit(pid, reading.units));
    return drawn ? drawn->value : std::numeric_limits<double>::quiet_NaN();
}

QString sampled_unit(const QString& pid, const sample_reading& reading) {
    const bool metric = reading.units == unit_system::metric;
    if (reading.by_standard && pid == fuel_economy)
        return metric ? QStringLiteral("km/l") : QStringLiteral("mpg");
    if (reading.by_standard && pid == boost)
        return shown_unit_of(in_unit::kilopascal, reading.units).name;
    if (!reading.by_standard || is_computed(pid))
        return get_units(pid, reading.units);
    const QString unit = standard_unit(pid, reading.units);
    return unit.isEmpty() ? not_available : unit;
}

QString sampled_heading(const QString& pid, const sample_reading& reading, const text_resources& lists) {
    if (pid.isEmpty())
        return fill(QStringLiteral("%@ (%@)"), {not_available, not_available});
    const QString format = !reading.by_standard  ? QStringLiteral("%@ (%@)")
                           : pid == fuel_economy ? QStringLiteral("%@ (%@ by speed and fuel)")
                           : pid == boost        ? QStringLiteral("%@ (%@ over outside pressure)")
                           : is_computed(pid)    ? QStringLiteral("%@ (%@)")
                                                 : QStringLiteral("%@ (%@ by SAE J1979)");
    return fill(format, {get_pid_name_with_pid(pid, lists, reading.sensors), sampled_unit(pid, reading)});
}

bool readings_differ(const QString& reply, const sample_reading& reading, const text_resources& lists) {
    const QString pid = sampled_pid(reply);
    if (pid.isEmpty() || is_computed(pid))
        return false;
    const QString unit = standard_unit(pid, reading.units);
    const pid_value value = read_pid_value(reply.trimmed(), {reading.units, reading.scales});
    const quantity* number = drawn_quantity(value, unit);
    sample_reading own;
    own.units = reading.units;
    if (!number) // one that lacks data, or a state, whose number says nothing in either reading
        return value.states.isEmpty() && !value.is_undefined;
    QString own_unit = sampled_unit(pid, own).trimmed();
    if (own_unit == not_available)
        own_unit = unit;
    else if (own_unit == QLatin1String("kph"))
        own_unit = QStringLiteral("km/h");
    const QString shown = with_decimals(sampled_number(reply, own, lists), 6) + u' ' + own_unit;
    return !says_the_same(shown, pid_value{{*number}, {}, {}, false});
}

QString sampled_pid(const QString& item) {
    const QString reply = item.trimmed();
    const bool is_reply = reply.startsWith(QLatin1String("41")) && hex_byte(reply, 2) >= 0;
    return is_reply ? reply.mid(2, 2).toUpper() : QString();
}

bool tell_columns(QStringList& pids, const QStringList& items) {
    pids.resize(std::max(pids.size(), items.size()));
    for (qsizetype column = 0; column < items.size(); ++column) {
        if (!pids[column].isEmpty())
            continue;
        const QString pid = sampled_pid(items[column]);
        const qsizetype other = pids.indexOf(pid); // which is another ECU's when it has its own here
        if (other < 0 || sampled_pid(items.value(other)) == pid)
            pids[column] = pid;
    }
    return !pids.isEmpty() && !pids.contains(QString());
}

QStringList in_columns(const QStringList& pids, const QStringList& items) {
    QStringList row(pids.size(), no_reply);
    for (qsizetype place = 0; place < items.size(); ++place) {
        const QString pid = sampled_pid(items[place]);
        const qsizetype column = pids.value(place) == pid ? place : pids.indexOf(pid);
        if (!pid.isEmpty() && column >= 0)
            row[column] = items[place];
    }
    return row;
}

} // namespace brivant
