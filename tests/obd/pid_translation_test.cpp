#include "base/text_resources.h"
#include "obd/maker_values.h"
#include "obd/number_text.h"
#include "obd/pid_translation.h"

#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

constexpr unit_system metric = unit_system::metric;
constexpr unit_system imperial = unit_system::imperial;
constexpr int sea_level_kpa = 101;

class translation : public testing::Test {
protected:
    translation() {
        write("OBD_MODES", "CARB\nEPA\n");
        write("OBD_FUEL_TYPE", "Gasoline");
        write("SUBARU_SSMID", "A2 other\nA1 EE20\nA1 never");
    }
    void write(const QString& list, const QByteArray& lines) {
        QFile file(folder.filePath(list + ".txt"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines);
    }
    QString in(unit_system units, const QString& reply) {
        return translateResponse(reply, units, sea_level_kpa, lists);
    }
    double number(const QString& reply) { return get_OBDVal(reply, metric, sea_level_kpa, lists); }
    QString maker(unit_system units, const QString& reply) {
        return translateResponse_subaru(reply, units, lists);
    }

    QTemporaryDir folder;
    text_resources lists{folder.path()};
};

} // namespace

TEST_F(translation, of_every_kind_of_PID) {
    struct example {
        const char* reply;
        const char* metric;
        const char* imperial;
    };
    // clang-format off
    const example examples[] = {
        {"410301",           "Open Loop - not ready for Close", nullptr},
        {"410303",           "N/A",                             nullptr},
        {"410310",           "Close Loop - fault with a O2 snsr", nullptr},
        {"410480",           "50.20  %",          nullptr},
        {"410500",           "-40.0 ° C",         "-40.00 ° F"},
        {"41067B",           "-3.91  %",          nullptr},
        {"410704",           "-96.88  %",         nullptr}, // -96.875: a tie goes to the even digit
        {"412D80",           "0.00  %",           nullptr},
        {"410A64",           "300.0  KPa",        "43.5  psi"},
        {"410B64",           "100  KPa",          "29.5  in.Hg"},
        {"410D3C",           "60.00  Km/h",       "37.50 mph"},
        {"410D3CA5",         "15525.00  Km/h",    "37.50 mph"}, // all data digits, and the first byte
        {"410E00",           "-64.0  deg",        nullptr},
        {"410F46",           "30.0 ° C",          "86.00 ° F"},
        {"411003E8",         "10.00  gm/s",       "1.33  lb/min"},
        {"411203",           "Invalid",           nullptr},
        {"411201",           "UpStream 1st cat",  nullptr},
        {"411464",           "0.500  V",          nullptr},
        {"411464FF",         "0.500  V / 99.22  %", nullptr},
        {"411BFF00",         "1.275  V / -100.00  %", nullptr},
        {"411C02",           "EPA",               nullptr},
        {"411E01",           "Power Take-off Active", nullptr},
        {"411E00",           "Power Take-off Not Active", nullptr},
        {"411F0E75",         "1 'Hours' 1 'mins' 41 'secs'", nullptr},
        {"41220008",         "0.6 KPa",           "0.0 psi"}, // 0.625, the remainder dropped before scaling
        {"41230064",         "1000.0 KPa",        "145.0 psi"},
        {"412480004000",     "0.488 V 0.244  ",   nullptr}, // "8000" and "4000" are decimal numbers
        {"41248A001F00",     "0.000 V 0.000  ",   nullptr}, // "8A00" reads 8, "1F00" reads 1
        {"412C40",           "25.10 %",           nullptr},
        {"413010",           "16 %",              nullptr},
        {"4131012C",         "44.00 Kms",         "27.50 mls"},
        {"41328001",         "-1.0 Pa",           "-145.0 psi"},
        {"41320102",         "258.0 Pa",          "37410.0 psi"},
        {"413365",           "101.0 KPPa",        "14.6 psi"},
        {"413400014000",     "-113.000 mA 0.000 ", nullptr}, // 4000 / 256 is 15
        {"413C6F01",         "-29.0 C",           "-20.0 F"},
        {"41421234",         "1.234 V",           nullptr},
        {"41420ABC",         "0.000 V",           nullptr},
        {"41430051",         "20.000 %",          nullptr},
        {"4144FFFF",         "0.008  ",           nullptr},
        {"4145FF",           "100.0 %",           nullptr},
        {"414646",           "30.0 C",            "86.0 F"},
        {"414D0622",         "1 days 2 'hrs' 10 'mins' ", nullptr},
        {"415101",           "Gasoline",          nullptr},
        {"41E40181",         "3.85 kpl",          "2.39 mpg"},
        {"41E58C",           "39.00 KPa",         "5.66 psi"},
        {"41E550",           "-21.00 KPa",        "-3.05 psi"},
    };
    // clang-format on
    for (const example& e : examples) {
        EXPECT_EQ(in(metric, e.reply).toStdString(), e.metric) << e.reply;
        EXPECT_EQ(in(imperial, e.reply), e.imperial ? QString(e.imperial) : in(metric, e.reply)) << e.reply;
    }
    EXPECT_EQ(translateResponse("41E564", metric, 98, lists), "2.00 KPa");
}

TEST_F(translation, takes_replies_as_they_come) {
    const QPair<const char*, const char*> pairs[] = {
        {"41 05 7B\r\r>", "83.0 ° C"},
        {" \r\n41 0C 1A F8 \r\n\r\n>", "1726.00 RPM"},
        {"410c1af8", "1726.00 RPM"},
        {"420C1AF8", "1726.00 RPM"},
        {"41 0C 0F A0\r41 0C 0F A2", "1000.00 RPM"},
        {"410D3C\r410D50", "60.00  Km/h"},
        {"410D3C0000000000FF", "1006632960.00  Km/h"}, // eight digits are 32 bits
        {"410D", "~"},
        {"-1", "~"},
        {"", "~"},
        {"?", "~"},
        {"NODATA", "~"},
        {">\r", "~"},
        {"410D3", "N/A"},
        {"410C1A", "N/A"},
        {"410C000", "N/A"},
        {"41031", "N/A"},
        {"410CXYZZ", "N/A"},
        {"41248000", "N/A"},
        {"411C00", "N/A"},
        {"411CFF", "N/A"},
        {"415102", "N/A"},
        // No translation: as passed in.
        {"41 20 80 01 80 00 \r>", "41 20 80 01 80 00 \r>"},
        {"411303", "411303"},
        {"BUS INIT: ERROR", "BUS INIT: ERROR"},
        {"41FF01", "41FF01"},
    };
    for (const auto& [reply, shown] : pairs)
        EXPECT_EQ(in(metric, reply).toStdString(), shown) << reply;
    EXPECT_EQ(in(imperial, "41 05 7B\r\r>"), "181.40 ° F");
    const text_resources nowhere(folder.filePath("nowhere"));
    EXPECT_EQ(translateResponse("411C01", metric, sea_level_kpa, nowhere), "N/A");
}

TEST_F(translation, number_is_the_first_piece) {
    EXPECT_TRUE(std::isnan(number("410D")));
    EXPECT_DOUBLE_EQ(number("41 04 FF"), 100);
    EXPECT_DOUBLE_EQ(number("410500"), -40);
    EXPECT_DOUBLE_EQ(number("410301"), 0);                    // a state
    EXPECT_DOUBLE_EQ(number("410C1A"), 0);                    // "N/A"
    EXPECT_DOUBLE_EQ(number("4113033F"), 0);                  // the raw reply is no whole number
    EXPECT_DOUBLE_EQ(number("41010007E200"), 0);              // nor has it an exponent
    EXPECT_DOUBLE_EQ(number("4101" + QString(400, u'9')), 0); // nor is one out of range
}

TEST_F(translation, maker_values) {
    struct example {
        const char* reply;
        const char* metric;
        const char* imperial;
    };
    const example examples[] = {
        {"6200057B", "83.0 ° C", "181.40 ° F"},
        {"62 11 4B 10 \r>", "40.0 ° C", "104.00 ° F"},
        {"62102Ab20102", "Euro5 0102", nullptr},
        {"62102DB3", "Euro4 ", nullptr},
        {"62102A00112233445566778899AABBCCDDEEFF", "- 112233445566778899AABBCC", nullptr},
        {"62114D50", "80.0 %", nullptr},
        {"62118964", "0.500 Kg ", "1.100 lb"},
        {"62124F00", "OFF", nullptr},
        {"62125B02", "ON", nullptr},
        {"62F1000000A1", "EE20", nullptr},
        {"62F1000000A3", "N/A", nullptr},
        {"62F10000", "N/A", nullptr},
        {"62F1824142", "4142", nullptr},
        {"62F1974142004344", "ABCD", nullptr},
        {"62114D5", "N/A", nullptr},
        {"62114D", "~", nullptr},
        {"62999901", "~", nullptr},
        {"NO DATA\r>", "~", nullptr},
    };
    for (const example& e : examples) {
        EXPECT_EQ(maker(metric, e.reply).toStdString(), e.metric) << e.reply;
        EXPECT_EQ(maker(imperial, e.reply).toStdString(), e.imperial ? e.imperial : e.metric) << e.reply;
    }
    EXPECT_EQ(translateResponse_subaru("62F1000000A1", metric, text_resources(folder.filePath("no"))), "N/A");
}

TEST(number_text, decimals) {
    const QPair<double, const char*> shown[] = {{0.5, "0.500"},  {-5, "-5.000"}, {1, "1.00"},
                                                {12.34, "12.3"}, {100, "100"},   {1726.6, "1727"}};
    for (const auto& [value, text] : shown)
        EXPECT_EQ(formatForDisplay(value), text);

    struct example {
        const char* text;
        int decimals;
        const char* result;
    };
    const example examples[] = {
        {"61.000000", 3, "61"},
        {"61.5", 3, "61.500"},
        {"122.1220", 3, "122.122"},
        {"0.05", 1, "0.1"},
        {"2.50", 0, "2"},
        {"61", 3, "61"},
        {"1.2.3", 3, "1.2.3"},
        {"no. 5", 3, "no. 5"},
        {"", 3, ""},
        {"1.5 mV", 3, "1.5 mV"},
        {"16777217.5", 0, "16777218"},
    };
    for (const example& e : examples)
        EXPECT_EQ(formatStringWithDouble(e.text, e.decimals), e.result) << e.text;
    EXPECT_EQ(with_decimals(1e308, 1000).size(), 309 + 1 + 60);
}
