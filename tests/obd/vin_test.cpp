#include "obd/vin.h"

#include <gtest/gtest.h>

TEST(vin, from_a_multi_frame_answer) {
    EXPECT_EQ(
        work_out_vin("014 \r0: 49 02 01 31 44 34 \r1: 47 50 30 30 52 35 35 \r2: 42 31 32 33 34 35 36 \r\r>"),
        "1D4GP00R55B123456");
    // The last frame is missing: what is there.
    EXPECT_EQ(work_out_vin("014\r0:490201314434\r1:47503030523535\r\r>"), "1D4GP00R55");
}

TEST(vin, from_the_lines_of_the_older_protocols) {
    EXPECT_EQ(work_out_vin("49 02 01 00 00 00 31 \r49 02 02 44 34 47 50 \r49 02 03 30 30 52 35 \r"
                           "49 02 04 35 42 31 32 \r49 02 05 33 34 35 36 \r\r>"),
              "1100R55B123456");
    EXPECT_EQ(work_out_vin("49020100000031\r\n490202474A4335\r\n490203353434\r\n\r\n>"), "11544");
    // No more than 39 characters, however many lines come.
    EXPECT_EQ(work_out_vin(QString("49020141424344\r").repeated(60)).size(), 39);
}

TEST(vin, none_in_the_reply) {
    for (const char* reply :
         {"014 \r0: 49 02 01 FF FF FF \r1: FF FF FF FF FF FF FF \r2: FF FF FF FF FF FF FF \r\r>",
          "014\r0:410201314434\r1:47503030523535\r\r>", "7F 09 12 \r\r>", "NO DATA\r\r>",
          "UNABLE TO CONNECT\r\r>", "BUS INIT: ERROR\r\r>", "49020100000000\r49", "014\r0:49", ":49", "?", "",
          "\r\r>", "~"})
        EXPECT_EQ(work_out_vin(reply), "N/A") << reply;
}

TEST(vin, characters_of_hex_text) {
    EXPECT_EQ(pullAsciiStr(u"4142004344"), "ABCD");
    EXPECT_EQ(pullAsciiStr(u"41zz424"), "AB");
    EXPECT_EQ(pullAsciiStr(QString("41").repeated(50)), QString(39, 'A'));
    EXPECT_EQ(pullAsciiStr(u""), "");
}
