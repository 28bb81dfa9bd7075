#include "base/string_table.h"
#include "base/text_resources.h"
#include "obd/pid_catalogue.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

constexpr unit_system metric = unit_system::metric;
constexpr unit_system imperial = unit_system::imperial;

} // namespace

TEST(pid_catalogue, units) {
    const std::tuple<const char*, const char*, const char*> examples[] = {
        {"04", "%", "%"},          {"0F", "° C", "° F"}, {"0d", "kph", "mph"}, {"0B", "KPa", "in.Hg"},
        {"22", "KPa", "psi"},      {"2A", " V", " V"},   {"2D", "%", "%"},     {"3B", " mA", " mA"},
        {"10", "gm/s", "lb/min"},  {"43", "%", "%"},     {"4C", "%", "%"},     {"54", "KPa", "in.H2O"},
        {"E4", "km/litre", "mpg"}, {"E8", "%", "%"},     {"32", "N/A", "N/A"}, {"13", "N/A", "N/A"},
        {"4D", "N/A", "N/A"},      {"E7", "N/A", "N/A"}, {"", "N/A", "N/A"},   {"123456789", "N/A", "N/A"},
    };
    for (const auto& [pid, in_metric, in_imperial] : examples) {
        EXPECT_EQ(get_units(pid, metric).toStdString(), in_metric) << pid;
        EXPECT_EQ(get_units(pid, imperial).toStdString(), in_imperial) << pid;
    }
}

TEST(pid_catalogue, ranges) {
    // clang-format off
    const std::tuple<const char*, double, double, double, double> examples[] = {
        // metric, imperial
        {"05", -40, 215, -40, 419},    {"08", -100, 92.22, -100, 92.22},   {"0C", 0, 16383.75, 0, 16383.75},
        {"2D", -100, 100, -100, 100},  {"3F", -40, 6513.5, -40, 11756.3},  {"42", 0, 65535, 0, 65535},
        {"E1", 0, 1, 0, 1},            {"E5", 0, 255, 0, 36.98332124728064}, {"53", 0, 0, 0, 0},
        {"30", 0, 0, 0, 0},            {"E9", 0, 0, 0, 0},
        {"32", -8192, 8191.75, -32.8878, 32.8868},
    };
    // clang-format on
    for (const auto& [pid, min, max, imperial_min, imperial_max] : examples) {
        EXPECT_EQ(get_PID_min_max(pid, false, metric), min) << pid;
        EXPECT_EQ(get_PID_min_max(pid, true, metric), max) << pid;
        EXPECT_EQ(get_PID_min_max(pid, false, imperial), imperial_min) << pid;
        EXPECT_EQ(get_PID_min_max(pid, true, imperial), imperial_max) << pid;
    }
}

// The shipped lists: every name stands on the line of its own PID.
TEST(pid_catalogue, names) {
    const text_resources lists;
    for (int pid = 0; pid <= 0xBF; ++pid) {
        const QString digits = QString::number(pid, 16).rightJustified(2, '0').toUpper();
        EXPECT_TRUE(l_get_pid_name(digits, true, lists).startsWith(digits)) << digits.toStdString();
    }
    EXPECT_EQ(get_pid_name("0D", true, lists), "0D Vehicle speed");
    EXPECT_EQ(get_pid_name_with_pid("0D", lists), "Vehicle speed");
    EXPECT_EQ(get_pid_name("60", false, lists), "NOT FOUND");
    EXPECT_EQ(l_get_pid_name("60", false, lists), "PIDs supported 61-80");
    EXPECT_EQ(l_get_pid_name("C0", false, lists), "N/A");
    // What is shown has a name for every PID, and bank and sensor of an oxygen sensor as the car has them.
    const obd_groups four_banks{{"7E8", {"0C", "1D"}}};
    EXPECT_EQ(get_pid_name_with_pid("78", lists), "Exhaust gas temperature bank 1 S1-S4");
    EXPECT_EQ(get_pid_name_with_pid("C3", lists), "Fuel level input A and B");
    EXPECT_EQ(get_pid_name_with_pid("d0", lists), "PID D0");
    EXPECT_EQ(get_pid_name_with_pid("36", lists), "O2 sensor lambda and current B1S3");
    EXPECT_EQ(get_pid_name_with_pid("36", lists, o2_banks_of(four_banks)),
              "O2 sensor lambda and current B2S1");
    EXPECT_EQ(o2_sensor_of("1B", o2_banks_of(four_banks)), "B4S2");
    EXPECT_EQ(o2_sensor_of("1B", o2_banks_of({{"7E8", {"13", "1D"}}})), "B2S4");
    EXPECT_EQ(o2_sensor_of("1C", o2_banks::two), "");
    for (const auto pid_name : {get_pid_name, l_get_pid_name}) {
        EXPECT_EQ(pid_name("0D", false, text_resources("/nowhere")), "N/A");
        EXPECT_EQ(pid_name("E4", false, lists), localised("FIELD_ENGINE_MPG", ""));
        EXPECT_EQ(pid_name("E5", true, lists), localised("FIELD_ENGINE_BOOST", ""));
    }
}

} // namespace brivant
