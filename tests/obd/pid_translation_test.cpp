#include "base/text_resources.h"
#include "obd/maker_values.h"
#include "obd/number_text.h"
#include "obd/pid_translation.h"
#include "tests/support/test_file.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace brivant {

namespace {

constexpr unit_system metric = unit_system::metric;
constexpr unit_system imperial = unit_system::imperial;
class translation : public testing::Test {
protected:
    translation() {
        write("OBD_MODES", "CARB\nEPA\n");
        write("OBD_FUEL_TYPE", "Gasoline");
        write("SUBARU_SSMID", "A2 other\nA1 EE20\nA1 never");
    }
    void write(const QString& list, const QByteArray& lines) {
        put_file(folder.filePath(list + ".txt"), lines);
    }
    QString in(unit_system units, const QString& reply) { return translateResponse(reply, units, lists); }
    double number(const QString& reply) { return get_OBDVal(reply, metric, lists); }
    QString maker(unit_system units, const QString& reply) {
        return translateResponse_subaru(reply, units, lists);
    }

    QTemporaryDir folder;
    text_resources lists{folder.path()};
};

} // namespace

TEST_F(translation, of_every_kind_of_PID) {
    // clang-format off
    const std::pair<const char*, const char*> same_in_both[] = {
        {"410301", "Open Loop - not ready for Close"},
        {"410302", "Close Loop - Using O2 snsr as feedback"},
        {"410303", "N/A"},                                  {"410304", "Open Loop - due to driving cond"},
        {"410308", "Open Loop - due to syst fault"},        {"410310", "Close Loop - fault with a O2 snsr"},
        {"410480", "50.20  %"},                             {"41067B", "-3.91  %"},
        {"410904", "-96.88  %"}, // -96.875: a tie goes to the even digit
        {"412D80", "0.00  %"},                              {"410E00", "-64.0  deg"},
        {"411203", "Invalid"},                              {"411180", "50.20  %"},
        {"411201", "UpStream 1st cat"},                     {"411202", "DownStream 1st cat"},
        {"411204", "atmosphere/off"},                       {"411464", "0.500  V"},
        {"411464FF", "0.500  V / 99.22  %"},                {"411BFF00", "1.275  V / -100.00  %"},
        {"411C02", "EPA"},                                  {"411E01", "Power Take-off Active"},
        {"411E00", "Power Take-off Not Active"},            {"411F1BF8", "1 'Hours' 59 'mins' 20 'secs'"},
        {"412480004000", "0.488 V 0.244  "}, // "8000" and "4000" are decimal numbers
        {"412B8A001F00", "0.000 V 0.000  "}, // "8A00" reads 8, "1F00" reads 1
        {"412C40", "25.10 %"},                              {"412F40", "25.10 %"},
        {"413010", "16 %"},
        {"413B00014000", "-113.000 mA 0.000 "}, // 4000 / 256 is 15
        {"41421234", "1.234 V"},                            {"41420ABC", "0.000 V"},
        {"41430051", "20.000 %"},                           {"4144FFFF", "0.008  "},
        {"4145FF", "100.0 %"},                              {"414780", "50.2 %"},
        {"414C80", "50.2 %"},                               {"415280", "50.2 %"},
        {"414E0622", "1 days 2 'hrs' 10 'mins' "},          {"415101", "Gasoline"},
    };
    const std::tuple<const char*, const char*, const char*> metric_and_imperial[] = {
        {"410500", "-40.0 ° C", "-40.00 ° F"},              {"410A64", "300.0  KPa", "43.5  psi"},
        {"410B64", "100  KPa", "29.5  in.Hg"},              {"410D3C", "60.00  Km/h", "37.50 mph"},
        {"410D3CA5", "15525.00  Km/h", "37.50 mph"}, // all data digits, and the first byte
        {"410F46", "30.0 ° C", "86.00 ° F"},                {"411003E8", "10.00  gm/s", "1.33  lb/min"},
        {"41220008", "0.6 KPa", "0.0 psi"}, // 0.625, the remainder dropped before scaling
        {"41230064", "1000.0 KPa", "145.0 psi"},            {"4131012C", "44.00 Kms", "27.50 mls"},
        {"41328001", "-1.0 Pa", "-145.0 psi"},              {"41328000", "0.0 Pa", "0.0 psi"},
        {"41320102", "258.0 Pa", "37410.0 psi"},            {"413365", "101.0 KPPa", "14.6 psi"},
        {"413F6F01", "-29.0 C", "-20.0 F"},                 {"414646", "30.0 C", "86.0 F"},
        {"41E40181", "3.85 kpl", "2.39 mpg"},               {"41E58C", "39.00 KPa", "5.66 psi"},
        {"41E550", "-21.00 KPa", "-3.05 psi"},
    };
    // clang-format on
    for (const unit_system units : {metric, imperial})
        for (const auto& [reply, text] : same_in_both)
            EXPECT_EQ(in(units, reply).toStdString(), text) << reply;
    for (const auto& [reply, in_metric, in_imperial] : metric_and_imperial) {
        EXPECT_EQ(in(metric, reply).toStdString(), in_metric) << reply;
        EXPECT_EQ(in(imperial, reply).toStdString(), in_imperial) << reply;
    }
}

TEST_F(translation, takes_replies_as_they_come) {
    // clang-format off
    const std::pair<const char*, const char*> pairs[] = {
        {"41 05 7B\r\r>", "83.0 ° C"},
        {" \r\n41 0C 1A F8 \r\n\r\n>", "1726.00 RPM"},
        {"410c1af8", "1726.00 RPM"}, {"420C1AF8", "1726.00 RPM"},
        {"41 0C 0F A0\r41 0C 0F A2", "1000.00 RPM"}, {"410D3C\r410D50", "60.00  Km/h"},
        {">\r41 0D 3C\r41 0D 50", "60.00  Km/h"},
        {"410D3C0000000000FF", "1006632960.00  Km/h"}, // eight digits are 32 bits
        {"410D", "~"}, {"-1", "~"}, {"", "~"}, {"?", "~"}, {"NODATA", "~"}, {">\r", "~"}, {"410D3", "N/A"},
        {"410C1A", "N/A"}, {"410C000", "N/A"}, {"41031", "N/A"}, {"410CXYZZ", "N/A"}, {"41248000", "N/A"},
        {"411C00", "N/A"}, {"411CFF", "N/A"}, {"415102", "N/A"},
        // No translation: as passed in.
        {"41 20 80 01 80 00 \r>", "41 20 80 01 80 00 \r>"},
        {"411303", "411303"}, {"BUS INIT: ERROR", "BUS INIT: ERROR"}, {"41FF01", "41FF01"},
    };
    // clang-format on
    for (const auto& [reply, shown] : pairs)
        EXPECT_EQ(in(metric, reply).toStdString(), shown) << reply;
    EXPECT_EQ(in(imperial, "41 05 7B\r\r>"), "181.40 ° F");
    const text_resources nowhere(folder.filePath("nowhere"));
    EXPECT_EQ(translateResponse("411C01", metric, nowhere), "N/A");
}

TEST(shipped_lists, begin_at_value_1_and_end_with_their_last_entry) {
    const text_resources lists;
    const QPair<const char*, const char*> pairs[] = {
        {"411C01", "OBD-II (CARB)"}, {"411C2A", "Brazil OBD Diesel"},  {"411C2B", "N/A"},
        {"415101", "Gasoline"},      {"411C0E", "OBD, EOBD and KOBD"}, {"41511C", "Dual Fuel Diesel and LNG"},
        {"41511D", "N/A"},
    };
    for (const auto& [reply, shown] : pairs)
        EXPECT_EQ(translateResponse(reply, metric, lists), shown) << reply;
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
    // clang-format off
    const std::tuple<const char*, const char*, const char*> metric_and_imperial[] = {
        {"6200057B", "83.0 ° C", "181.40 ° F"},      {"62 11 4B 10 \r>", "40.0 ° C", "104.00 ° F"},
        {"62118964", "0.500 Kg ", "1.100 lb"},
    };
    const std::pair<const char*, const char*> same_in_both[] = {
        {"62102Ab20102", "Euro5 0102"}, {"62102DB3", "Euro4 "},
        {"62102A00112233445566778899AABBCCDDEEFF", "- 112233445566778899AABBCC"},
        {"62114D50", "80.0 %"},         {"62124F00", "OFF"},    {"62125B02", "ON"},  {"62F1000000A1", "EE20"},
        {"62F1000000A3", "N/A"},        {"62F10000", "N/A"},    {"62F1824142", "4142"},
        {"62F1974142004344", "ABCD"},   {"62114D5", "N/A"},     {"62114D", "~"},     {"62999901", "~"},
        {"NO DATA\r>", "~"},
    };
    // clang-format on
    for (const auto& [reply, in_metric, in_imperial] : metric_and_imperial) {
        EXPECT_EQ(maker(metric, reply).toStdString(), in_metric) << reply;
        EXPECT_EQ(maker(imperial, reply).toStdString(), in_imperial) << reply;
    }
    for (const unit_system units : {metric, imperial})
        for (const auto& [reply, text] : same_in_both)
            EXPECT_EQ(maker(units, reply).toStdString(), text) << reply;
    EXPECT_EQ(translateResponse_subaru("62F1000000A1", metric, text_resources(folder.filePath("no"))), "N/A");
}

TEST(number_text, decimals) {
    const QPair<double, const char*> shown[] = {{0.5, "0.500"},  {-5, "-5.000"}, {1, "1.00"},
                                                {12.34, "12.3"}, {100, "100"},   {1726.6, "1727"}};
    for (const auto& [value, text] : shown)
        EXPECT_EQ(formatForDisplay(value), text);

    // clang-format off
    const std::tuple<const char*, int, const char*> examples[] = {
        {"61.000000", 3, "61"}, {"61.5", 3, "61.500"}, {"122.1220", 3, "122.122"}, {"0.05", 1, "0.1"},
        {"2.50", 0, "2"},       {"61", 3, "61"},       {"1.2.3", 3, "1.2.3"},      {"no. 5", 3, "no. 5"},
        {"", 3, ""},            {"1.5 mV", 3, "1.5 mV"}, {"16777217.5", 0, "16777218"},
    };
    // clang-format on
    for (const auto& [text, decimals, result] : examples)
        EXPECT_EQ(formatStringWithDouble(text, decimals), result) << text;
    EXPECT_EQ(with_decimals(1e308, 1000).size(), 309 + 1 + 60);
}

} // namespace brivant
