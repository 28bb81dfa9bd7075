#include "tests/diagnostics/diagnostic_bench.h"

#include <gtest/gtest.h>

// What a chip that refuses "AT H1" still lets a person read.

namespace {

const QString initialised = "> AT Z\n< ELM327\n> AT E0\n< OK\n> AT I\n< ELM327\n> AT DP\n< AUTO\n"
                            "> AT H1\n< ?\n! again 3\n> AT DPN\n< A6\n"
                            "> 01 00 |12\n< 41 00 00 18 00 00 \n> AT DPN\n< A6\n"
                            "> 01 00\n< 41 00 00 18 00 00 \n";

} // namespace

TEST(without_headers, vehicle_information) {
    diagnostic_bench bench;
    const QString talk = "! do vehicle-info\n" + initialised +
                         "> AT H1\n< ?\n! again 3\n> AT RV\n< 12.6V\n"
                         "> 09 02 |12\n< 014\n< 0: 49 02 01 31 47 31\n< 1: 4A 43 35 34 34 34 52\n"
                         "< 2: 37 32 35 32 33 36 37\n"
                         "> 01 0C \n< 41 0C 1A F8 \n< 41 0C 00 00 \n"
                         "> 01 0D \n< NO DATA\n"
                         "= vehicle No of ECUS : 1| Supporting Car: 2 PIDs /  Voltage: 12.6V"
                         " /  VIN: 1G1JC5444R7252367 /  --- ECU() Car--- |has 2 available PIDs"
                         " / 0C|Engine RPM|1726.00 RPM\n"
                         "= ended done\n= never message\n";
    EXPECT_EQ(play(conversation::parse(talk, "line"), bench), "");
}
