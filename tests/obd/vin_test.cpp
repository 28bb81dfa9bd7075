#include "obd/vin.h"

#include <gtest/gtest.h>

TEST(vin, in_the_reply) {
    const std::pair<QString, const char*> examples[] = {
        {"014 \r0: 49 02 01 31 44 34 \r1: 47 50 30 30 52 35 35 \r2: 42 31 32 33 34 35 36 \r\r>",
         "1D4GP00R55B123456"},
        {"014\r0:490201314434\r1:47503030523535\r\r>", "1D4GP00R55"}, // the last frame is missing
        // The lines of the older protocols
        {"49 02 01 00 00 00 31 \r49 02 02 44 34 47 50 \r49 02 03 30 30 52 35 \r"
         "49 02 04 35 42 31 32 \r49 02 05 33 34 35 36 \r\r>",
         "1100R55B123456"},
        {"49020100000031\r\n490202474A4335\r\n490203353434\r\n\r\n>", "11544"},
        {QString("49020141414141\r").repeated(60), "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"}, // 39, no more
        // None
        {"014 \r0: 49 02 01 FF FF FF \r1: FF FF FF FF FF FF FF \r2: FF FF FF FF FF FF FF \r\r>", "N/A"},
        {"006 \r0: 49 02 01 20 20 20 \r\r>", "N/A"},
        {"014\r0:410201314434\r1:47503030523535\r\r>", "N/A"},
        {"7F 09 12 \r\r>", "N/A"},
        {"BUS INIT: ERROR\r\r>", "N/A"},
        {"49020100000000\r49", "N/A"},
        {"014\r0:49", "N/A"},
        {"\r\r>", "N/A"},
        {"~", "N/A"},
    };
    for (const auto& [reply, vin] : examples)
        EXPECT_EQ(work_out_vin(reply), vin) << reply.toStdString();
}

TEST(vin, characters_of_hex_text) {
    EXPECT_EQ(pullAsciiStr(u"4142004344"), "ABCD");
    EXPECT_EQ(pullAsciiStr(u"41zz424"), "AB");
    EXPECT_EQ(pullAsciiStr(QString("41").repeated(50)), QString(39, 'A'));
    EXPECT_EQ(pullAsciiStr(u""), "");
}
