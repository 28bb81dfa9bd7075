#include "obd/pid_catalogue.h"

#include "base/string_table.h"
#include "base/text_resources.h"
#include "obd/reply_text.h"

#include <algorithm>
#include <concepts>
#include <string_view>

namespace brivant {

namespace {

constexpr unsigned fuel_economy = 0xE4;
constexpr unsigned boost = 0xE5;
constexpr unsigned pids_in_a_list = 32;

// A text or number that may differ between the unit systems.
template <typename T>
struct in_units {
    T metric;
    T imperial;
    constexpr in_units(const std::convertible_to<T> auto& same) : metric(same), imperial(same) {}
    constexpr in_units(T in_metric, T in_imperial) : metric(in_metric), imperial(in_imperial) {}
    constexpr T of(unit_system units) const { return units == unit_system::metric ? metric : imperial; }
};
using text = std::u16string_view;

struct catalogue_row {
    unsigned first_pid;
    unsigned last_pid;
    in_units<text> unit;
    in_units<double> minimum;
    in_units<double> maximum;
};

// One row a PID or a run of PIDs; what is not here has no unit and no range.
// clang-format off
constexpr catalogue_row catalogue[] = {
//   PIDs        unit: metric, imperial      minimum            maximum
    {0x04, 0x04, u"%",                       0.0,               100.0},
    {0x05, 0x05, {u"° C", u"° F"},           -40.0,             {215, 419}},
    {0x06, 0x09, u"%",                       -100.0,            92.22},
    {0x0A, 0x0A, {u"KPa", u"psi"},           0.0,               {765, 1109.499637418419}},
    {0x0B, 0x0B, {u"KPa", u"in.Hg"},         0.0,               {255, 75.225}},
    {0x0C, 0x0C, u"RPM",                     0.0,               16383.75},
    {0x0D, 0x0D, {u"kph", u"mph"},           0.0,               {255, 159.4}},
    {0x0E, 0x0E, u"deg",                     -64.0,             63.5},
    {0x0F, 0x0F, {u"° C", u"° F"},           -40.0,             {215, 419}},
    {0x10, 0x10, {u"gm/s", u"lb/min"},       0.0,               {655.35, 86.57199471598415}},
    {0x11, 0x11, u"%",                       0.0,               100.0},
    {0x14, 0x1B, u" V",                      0.0,               1.275},
    {0x22, 0x22, {u"KPa", u"psi"},           0.0,               {5177.27, 1527.29465}},
    {0x23, 0x23, {u"KPa", u"psi"},           0.0,               {655350, 193328.25}},
    {0x24, 0x2B, u" V",                      0.0,               7.999},
    {0x2C, 0x2C, u"%",                       0.0,               100.0},
    {0x2D, 0x2D, u"%",                       -100.0,            100.0},
    {0x2E, 0x2F, u"%",                       0.0,               100.0},
    {0x32, 0x32, u"N/A",                     {-8192, -32.8878}, {8191.75, 32.8868}},
    {0x33, 0x33, {u"KPa", u"in.Hg"},         0.0,               {255, 75.225}},
    {0x34, 0x3B, u" mA",                     -128.0,            127.99},
    {0x3C, 0x3F, {u"° C", u"° F"},           -40.0,             {6513.5, 11756.3}},
    {0x42, 0x42, u" V",                      0.0,               65535.0},
    {0x43, 0x43, u"%",                       0.0,               25700.0},
    {0x45, 0x45, u"%",                       0.0,               100.0},
    {0x46, 0x46, {u"° C", u"° F"},           -40.0,             {215, 419}},
    {0x47, 0x4C, u"%",                       0.0,               100.0},
    {0x52, 0x52, u"%",                       0.0,               100.0},
    {0x53, 0x54, {u"KPa", u"in.H2O"},        0.0,               0.0},
    {0xE1, 0xE1, {u"Kms", u"mls"},           0.0,               1.0},
    {0xE2, 0xE2, {u"KW", u"HP"},             0.0,               0.0},
    {0xE3, 0xE3, {u"N-m", u"lb-ft"},         0.0,               0.0},
    {0xE4, 0xE4, {u"km/litre", u"mpg"},      0.0,               16383.75},
    {0xE5, 0xE5, {u"KPa", u"psi"},           0.0,               {255, 36.98332124728064}},
    {0xE8, 0xE8, u"%",                       -100.0,            92.22},
};
// clang-format on

const QString not_found = QStringLiteral("NOT FOUND");

// Behind the last list of names.
struct later_name {
    unsigned pid;
    const char* name;
};
constexpr later_name later_names[] = {{0xC0, "PIDs supported C1-E0"},
                                      {0xC3, "Fuel level input A and B"},
                                      {0xC4, "Exhaust particulate control system"}};

const catalogue_row* find_row(const QString& pid) {
    const unsigned number = convertStr2Byte(pid);
    for (const catalogue_row& row : catalogue)
        if (number >= row.first_pid && number <= row.last_pid)
            return &row;
    return nullptr;
}

QString name_from_list(unsigned pid, bool with_prefix, const text_resources& lists) {
    const QString list = QStringLiteral("FIELD_PIDS_%1").arg(pid / pids_in_a_list);
    const std::optional<QString> line = lists.line(list, pid % pids_in_a_list);
    return !line ? not_available : with_prefix ? *line : line->mid(3);
}

// The name of a PID up to `last_pid`, which a list or the string table holds.
QString name_of(const QString& pid, bool with_prefix, unsigned last_pid, const QString& if_above,
                const text_resources& lists) {
    const unsigned number = convertStr2Byte(pid);
    if (number == boost)
        return localised(QStringLiteral("FIELD_ENGINE_BOOST"), QString());
    if (number == fuel_economy)
        return localised(QStringLiteral("FIELD_ENGINE_MPG"), QString());
    return number > last_pid ? if_above : name_from_list(number, with_prefix, lists);
}

} // namespace

QString get_units(const QString& pid, unit_system units) {
    const catalogue_row* row = find_row(pid);
    if (!row)
        return not_available;
    const text unit = row->unit.of(units);
    return QString::fromUtf16(unit.data(), static_cast<qsizetype>(unit.size()));
}

double get_PID_min_max(const QString& pid, bool get_max, unit_system units) {
    const catalogue_row* row = find_row(pid);
    return !row ? 0 : (get_max ? row->maximum : row->minimum).of(units);
}

QString get_pid_name(const QString& pid, bool with_prefix, const text_resources& lists) {
    return name_of(pid, with_prefix, 0x5F, not_found, lists);
}

QString l_get_pid_name(const QString& pid, bool with_prefix, const text_resources& lists) {
    return name_of(pid, with_prefix, 0xBF, not_available, lists);
}

o2_banks o2_banks_of(const obd_groups& available) {
    const auto has = [&available](const QString& pid) {
        return std::any_of(available.begin(), available.end(),
                           [&pid](const obd_group& ecu) { return ecu.pidSet.contains(pid); });
    };
    const bool four = has(QStringLiteral("1D")) && !has(QStringLiteral("13"));
    return four ? o2_banks::four : o2_banks::two;
}

QString o2_sensor_of(const QString& pid, o2_banks banks) {
    constexpr unsigned sensors = 8;
    const unsigned sensors_a_bank = banks == o2_banks::two ? 4 : 2;
    const unsigned number = convertStr2Byte(pid);
    for (const unsigned first : {0x14U, 0x24U, 0x34U})
        if (number >= first && number < first + sensors)
            return QStringLiteral("B%1S%2")
                .arg((number - first) / sensors_a_bank + 1)
                .arg((number - first) % sensors_a_bank + 1);
    return {};
}

QString get_pid_name_with_pid(const QString& pid, const text_resources& lists, o2_banks banks) {
    QString name = get_pid_name(pid, false, lists);
    if (name == not_found)
        name = l_get_pid_name(pid, false, lists);
    for (const later_name& later : later_names)
        if (name == not_available && later.pid == convertStr2Byte(pid))
            return QLatin1String(later.name);
    if (name == not_available)
        return QStringLiteral("PID %1").arg(pid.toUpper());
    if (banks == o2_banks::four)
        if (const QString in_list = o2_sensor_of(pid, o2_banks::two); !in_list.isEmpty())
            name.replace(in_list, o2_sensor_of(pid, banks));
    return name;
}

} // namespace brivant
