#include "obd/reply.h"
#include "obd/vin.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

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

// The same VIN as it comes with headers and without, and with one of its lines lost.
TEST(vin, of_a_whole_answer) {
    const QString can = "7E81014490201314731\r7E8214A433534343452\r7E82237323532333637";
    const QString transmission = "7E91014490201584731\r7E9214A433534343452\r7E92237323532333637\r";
    QString lines, headed;
    for (const char* message :
         {"49020100000031", "49020247314A43", "49020335343434", "49020452373235", "49020532333637"}) {
        lines += QString(message) + '\r';
        headed += QString("486B10%1AA\r").arg(message);
    }
    const std::tuple<QString, int, bool, const char*> examples[] = {
        {can, 6, true, "1G1JC5444R7252367"},
        {transmission + can, 6, true, "1G1JC5444R7252367"}, // the engine's
        {transmission + "7E8037F0912", 6, true, "XG1JC5444R7252367"},
        {"014\r0:490201314731\r1:4A433534343452\r2:37323532333637", 6, false, "1G1JC5444R7252367"},
        {headed, 3, true, "115444R7252367"}, // the second line is left out, on purpose
        {lines, 3, false, "115444R7252367"},
        {can, -1, true, "N/A"},
        {"7E8037F0912", 6, true, "N/A"},
        {"NODATA", 6, true, "N/A"},
        {"~", 6, false, "N/A"},
    };
    for (const auto& [text, protocol, headers, vin] : examples) {
        EXPECT_EQ(vin_of(reply({text, protocol, headers})), vin) << text.toStdString();
        QStringList rest = text.split('\r', Qt::SkipEmptyParts);
        if (text.contains("7E9") || text == lines || rest.size() < 3)
            continue;
        rest.removeAt(rest.size() - 2);
        EXPECT_EQ(vin_of(reply({rest.join('\r'), protocol, headers})), "N/A") << "one line is missing";
    }
    headed.replace("49020335343434AA", "49020335AA");
    EXPECT_EQ(vin_of(reply({headed, 3, true})), "N/A");
}

TEST(vin, characters_of_hex_text) {
    EXPECT_EQ(pullAsciiStr(u"4142004344"), "ABCD");
    EXPECT_EQ(pullAsciiStr(u"41zz424"), "AB");
    EXPECT_EQ(pullAsciiStr(QString("41").repeated(50)), QString(39, 'A'));
    EXPECT_EQ(pullAsciiStr(u""), "");
}

} // namespace brivant
