#include "obd/readings/sweep_values.h"

#include "obd/standard_reading/pid_table.h"
#include "obd/standard_reading/pid_values.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brivant {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double km_per_mile = 1.609344;
constexpr double litres_per_gallon = 3.78541178;
constexpr double usual_outside_pressure = 101; // kPa
constexpr double seconds_an_hour = 3600;

QString item_of(const QStringList& items, const QString& pid) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&pid](const QString& item) { return sampled_pid(item) == pid; });
    return found == items.end() ? QString() : found->trimmed();
}

// The first quantity of a PID in the standard's own unit; NaN without one.
double quantity_of(const QStringList& items, const QString& pid, const full_scales& scales) {
    const pid_value value = read_pid_value(item_of(items, pid), {unit_system::metric, scales});
    return value.quantities.isEmpty() ? nan : value.quantities.first().value;
}

// Grams of air a gram of fuel, and grams of fuel a litre.
struct fuel_kind {
    double air_ratio;
    double density;
};

// By the value of PID 51; petrol where the car does not tell it.
std::optional<fuel_kind> fuel_of(const QStringList& items) {
    constexpr fuel_kind petrol{14.7, 745};
    constexpr fuel_kind diesel{14.5, 832};
    const QString item = item_of(items, QStringLiteral("51"));
    if (item.isEmpty())
        return petrol;
    switch (item.mid(4, 2).toInt(nullptr, 16)) {
    case 0x01:
    case 0x09:
    case 0x11: return petrol;
    case 0x04:
    case 0x13:
    case 0x17:
    case 0x19: return diesel;
    default: return std::nullopt;
    }
}

double litres_an_hour(const QStringList& items) {
    const full_scales scales = scales_of_sweep(items);
    if (const double rate = quantity_of(items, QStringLiteral("5E"), scales); !std::isnan(rate))
        return rate;
    const std::optional<fuel_kind> fuel = fuel_of(items);
    const double air = quantity_of(items, QStringLiteral("10"), scales);
    return fuel ? air * seconds_an_hour / (fuel->air_ratio * fuel->density) : nan;
}

double km_a_litre(const QStringList& items) {
    const double economy = quantity_of(items, QStringLiteral("0D"), {}) / litres_an_hour(items);
    return std::isfinite(economy) ? economy : nan;
}

double economy_number(const QStringList& items, unit_system units) {
    const double in_km = km_a_litre(items);
    return units == unit_system::metric ? in_km : in_km * litres_per_gallon / km_per_mile;
}

double boost_number(const QStringList& items, unit_system units) {
    const QString manifold = item_of(items, QStringLiteral("E5")).replace(2, 2, QStringLiteral("0B"));
    const double pressure = quantity_of({manifold}, QStringLiteral("0B"), scales_of_sweep(items));
    const double outside = quantity_of(items, QStringLiteral("33"), {});
    const double boost = pressure - (std::isnan(outside) ? usual_outside_pressure : outside);
    return boost * shown_unit_of(in_unit::kilopascal, units).factor;
}

double number_by_physics(const QString& pid, const QStringList& items, unit_system units) {
    return pid == QLatin1String("E4") ? economy_number(items, units) : boost_number(items, units);
}

bool is_by_physics(const QString& pid) {
    return pid == QLatin1String("E4") || pid == QLatin1String("E5");
}

// Nearly the same: the program's own constants are rounded.
bool is_near(double one, double other) {
    constexpr double rounding = 0.01;
    return std::isnan(one) ? std::isnan(other) : std::abs(one - other) <= rounding * std::abs(other);
}

} // namespace

full_scales scales_of_sweep(const QStringList& items) {
    full_scales scales;
    for (const int pid : {0x4F, 0x50}) {
        const QString item = item_of(items, QString::number(pid, 16).toUpper());
        take_full_scales(pid, QByteArray::fromHex(item.mid(4).toLatin1()), scales);
    }
    return scales;
}

QList<double> sampled_numbers(const QStringList& items, const sample_reading& reading,
                              const text_resources& lists) {
    sample_reading of_sweep = reading;
    if (reading.by_standard)
        of_sweep.scales = scales_of_sweep(items);
    QList<double> numbers;
    for (const QString& item : items) {
        const QString pid = reading.by_standard ? sampled_pid(item) : QString();
        numbers += is_by_physics(pid) ? number_by_physics(pid, items, reading.units)
                                      : sampled_number(item, of_sweep, lists);
    }
    return numbers;
}

bool readings_differ_in(const QStringList& items, const QString& item, const sample_reading& reading,
                        const text_resources& lists) {
    sample_reading of_sweep = reading;
    of_sweep.scales = scales_of_sweep(items);
    const QString pid = sampled_pid(item);
    if (!is_by_physics(pid))
        return readings_differ(item, of_sweep, lists);
    of_sweep.by_standard = false;
    return !is_near(sampled_number(item, of_sweep, lists), number_by_physics(pid, items, reading.units));
}

QList<int> columns_of_sweep(const QStringList& pids) {
    constexpr int run = 8;
    const auto is_scaled = [](int pid) {
        return pid == 0x0B || pid == 0x10 || pid == 0x44 || (pid >= 0x24 && pid < 0x24 + run) ||
               (pid >= 0x34 && pid < 0x34 + run);
    };
    const bool has_scales = pids.contains(QLatin1String("4F")) || pids.contains(QLatin1String("50"));
    QList<int> columns;
    for (int column = 0; column < pids.size(); ++column)
        if (is_by_physics(pids[column]) || (has_scales && is_scaled(pids[column].toInt(nullptr, 16))))
            columns += column;
    return columns;
}

QString economy_by_physics(const QStringList& items, unit_system units) {
    constexpr int decimals = 2;
    constexpr double hundred_km = 100;
    const double economy = economy_number(items, units);
    if (std::isnan(economy))
        return no_reply;
    const QString number = QString::number(economy, 'f', decimals);
    if (units == unit_system::imperial)
        return number + QStringLiteral(" mpg (US)");
    if (economy == 0)
        return number + QStringLiteral(" km/l");
    return QStringLiteral("%1 km/l, %2 l/100 km").arg(number).arg(hundred_km / economy, 0, 'f', decimals);
}

QString boost_by_physics(const QStringList& items, unit_system units) {
    const double boost = boost_number(items, units);
    if (std::isnan(boost))
        return no_reply;
    const shown_unit unit = shown_unit_of(in_unit::kilopascal, units);
    return QStringLiteral("%1 %2").arg(boost, 0, 'f', unit.decimals).arg(unit.name);
}

} // namespace brivant
