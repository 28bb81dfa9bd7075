#include "obd/standard_reading/pid_table.h"

namespace brivant {

namespace {

using enum in_unit;

// clang-format off
struct unit_row {
    in_unit unit;
    const char* metric;
    const char* imperial;
    double factor;
    double offset;
    int decimals; // the fewest shown in imperial units
};
constexpr unit_row unit_rows[] = {
    {none,                      "",         "",         1,            0,   0},
    {percent,                   "%",        "%",        1,            0,   0},
    {celsius,                   "° C",      "° F",      1.8,          32,  1},
    {km_per_hour,               "km/h",     "mph",      0.6213711922, 0,   1},
    {kilometre,                 "km",       "mi",       0.6213711922, 0,   1},
    {kilopascal,                "kPa",      "psi",      0.1450377377, 0,   1},
    {kilopascal_hg,             "kPa",      "in.Hg",    0.2952998,    0,   1},
    {kilopascal_h2o,            "kPa",      "in.H2O",   4.014631,     0,   1},
    {pascal,                    "Pa",       "in.H2O",   0.00401463,   0,   3},
    {rpm,                       "rpm",      "rpm",      1,            0,   0},
    {degree,                    "°",        "°",        1,            0,   0},
    {gram_per_second,           "g/s",      "lb/min",   0.1322773573, 0,   1},
    {volt,                      "V",        "V",        1,            0,   0},
    {milliampere,               "mA",       "mA",       1,            0,   0},
    {ampere,                    "A",        "A",        1,            0,   0},
    {second,                    "s",        "s",        1,            0,   0},
    {hour,                      "h",        "h",        1,            0,   0},
    {minute,                    "min",      "min",      1,            0,   0},
    {litre_per_hour,            "L/h",      "gal/h",    0.2641720524, 0,   1},
    {newton_metre,              "N m",      "lb ft",    0.7375621493, 0,   1},
    {kilogram_per_hour,         "kg/h",     "lb/h",     2.2046226218, 0,   1},
    {milligram_per_stroke,      "mg/stroke", "mg/stroke", 1,          0,   0},
    {ppm,                       "ppm",      "ppm",      1,            0,   0},
    {milligram_per_cubic_metre, "mg/m3",    "mg/m3",    1,            0,   0},
    {litre,                     "L",        "gal",      0.2641720524, 0,   1},
};
// clang-format on

} // namespace

int first_of_run(int pid) {
    constexpr int run = 8;
    for (const int first : {0x14, 0x24, 0x34})
        if (pid >= first && pid < first + run)
            return first;
    return pid == 0x82 || pid == 0x89 || pid == 0x8A ? 0x81 : pid;
}

shown_unit shown_unit_of(in_unit unit, unit_system units) {
    for (const unit_row& row : unit_rows)
        if (row.unit == unit)
            return units == unit_system::metric
                       ? shown_unit{1, 0, 0, QString::fromUtf8(row.metric)}
                       : shown_unit{row.factor, row.offset, row.decimals, QString::fromUtf8(row.imperial)};
    return {};
}

} // namespace brivant
