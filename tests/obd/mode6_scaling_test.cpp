#include "obd/mode6_scaling.h"

#include "base/text_resources.h"
#include "obd/number_text.h"
#include "tests/support/test_file.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

TEST(mode6_scaling, worked_examples) {
    // clang-format off
    const std::tuple<const char*, const char*, const char*> examples[] = {
        {"01", "01F4", "500.000000 "},      {"03", "0002", "6.000000 "},      {"05", "8000", "0.999424 "},
        {"07", "0FA0", "1000.000000 RPM"},  {"0A", "03E8", "122.000000 mV"},  {"0a", "0e66", "449.692000 mV"},
        {"11", "0003", "300.000000 ms"},    {"16", "0000", "-40.000000 ^C"},  {"16", "0190", "0.000000 ^C"},
        {"1F", "0126", "14.700000 A/F ratio"}, {"20", "FFFF", "255.992817 "}, {"26", "000A", "1.000000 V/ms"},
        {"29", "0008", "8.000000 "},        {"2E", "0000", "0.000000 False"}, {"2E", "0005", "5.000000 True"},
        {"30", "FFFF", "100.006410 %"},     {"39", "0000", "-327.680000 %"},  {"39", "0148", "0.320000 %"},
        {"0D", "0002", "0.007812 mA"}, // an exact tie goes to the even digit
        // Signed identifiers take the number as it comes, and some have units of their own.
        {"81", "FFFF", "65535.000000 "},    {"83", "FFE4", "655.080000 "},    {"96", "0190", "40.000000 ^C"},
        {"8B", "03E8", "1.000000 mV"},      {"8C", "03E8", "10.000000 mV"},   {"8E", "03E8", "1.000000 mA"},
        {"B1", "8000", "65536.000000 mV"},  {"FE", "FF38", "16334.000000 Pa"},
        // More than 16 bits, no hex, no byte
        {"81", "7FFFF", "524287.000000 "},  {"81", "80000", "-32768.000000 "}, {"01", "80000", "524288.000000 "},
        {"01", "123456789ABC", "4294967295.000000 "}, {"81", "123456789ABC", "-1.000000 "},
        {"0A", "zz", "0.000000 mV"},        {"", "", "0.000000 "},            {"zz", "0010", "16.000000 "},
        {"10A", "0010", "16.000000 "},
    };
    // clang-format on
    for (const auto& [uasid, raw, text] : examples) {
        EXPECT_EQ(CAN_scale_and_units(uasid, raw, true), text) << uasid << ' ' << raw;
        EXPECT_EQ(CAN_scale_and_units(uasid, raw, false), QString(text).section(' ', 0, 0)) << uasid;
    }
}

TEST(mode6_scaling, unlisted_identifiers_give_the_raw_value) {
    const std::pair<int, int> unlisted[] = {{0x00, 0x00}, {0x3A, 0x81}, {0x87, 0x89}, {0x8F, 0x8F},
                                            {0x91, 0x95}, {0x97, 0x9B}, {0x9E, 0xA7}, {0xAA, 0xAE},
                                            {0xB2, 0xFC}, {0xFF, 0xFF}};
    for (const auto& [first, last] : unlisted)
        for (int uasid = first; uasid <= last; ++uasid)
            EXPECT_EQ(CAN_scale_and_units(QString::number(uasid, 16), "9234", true), "37428.000000 ")
                << uasid;
}

TEST(mode6_scaling, descriptions_cover_the_range_up_to_the_next_line) {
    QTemporaryDir folder;
    const auto write = [&folder](const QString& list, const QByteArray& lines) {
        put_file(folder.filePath(list), lines);
    };
    write("OBDMID_CAN.txt", "10|ten\n20 some|twenty|more\n30\n40|end\n");
    const text_resources lists(folder.path());
    const std::pair<const char*, const char*> examples[] = {
        {"10", "ten"}, {"1f", "ten"}, {"20", "twenty|more"}, {"0F", "N/A"}, {"30", "N/A"},
        {"40", "N/A"}, {"FF", "N/A"}, {"100", "N/A"},        {"", "N/A"},
    };
    for (const auto& [identifier, text] : examples)
        EXPECT_EQ(grab_CAN_mode6_OBDMID_TESTID_description(identifier, true, lists), text) << identifier;
    // There is no such list, and then an empty one.
    EXPECT_EQ(grab_CAN_mode6_OBDMID_TESTID_description("10", false, lists), "N/A");
    write("TID_CAN.txt", "");
    EXPECT_EQ(grab_CAN_mode6_OBDMID_TESTID_description("10", false, text_resources(folder.path())), "N/A");
}

TEST(mode6_scaling, ranges_are_pruned) {
    QStringList obdmids{"00", "01", "20", "21", "40", "60", "3F", "80", "A0", "A1", "C0", "E0", "ff", ""};
    fixArrayForMode6(obdmids);
    EXPECT_EQ(obdmids, (QStringList{"01", "21", "3F", "A1", "ff"}));
}

TEST(mode6_scaling, shipped_descriptions) {
    // Printable ASCII without the characters that separate fields or quote: ~ | and the apostrophe.
    const QRegularExpression form("^[0-9A-F]{2}\\|[!-&(-{}][ -&(-{}]*$");
    const text_resources lists;
    for (const auto& [name, count] : {std::pair("OBDMID_CAN", 111), std::pair("TID_CAN", 16)}) {
        QStringList lines = lists.get_array_from_resource(name, "txt").value_or(QStringList());
        lines.removeAll("");
        EXPECT_EQ(lines.size(), count);
        QStringList sorted = lines;
        sorted.removeDuplicates();
        sorted.sort();
        EXPECT_EQ(lines, sorted) << name;
        for (const QString& line : lines)
            EXPECT_TRUE(form.match(line).hasMatch()) << line.toStdString();
    }
    const std::tuple<const char*, bool, const char*> names[] = {
        {"10", true, "Exhaust gas sensor monitor bank 4 sensor 4"},
        {"12", true, "Exhaust gas sensor monitor bank 2 sensor 5"},
        {"51", true, "Exhaust gas sensor heater monitor bank 1 sensor 5"},
        {"A5", true, "Misfire cylinder 4 data"},
        {"B1", true, "Misfire cylinder 16 data"},
        {"B2", true, "PM filter monitor bank 1"},
        {"1F", true, "Reserved"},
        {"FE", true, "Manufacturer defined"},
        {"FF", true, "N/A"},
        {"0A", false, "Sensor period (calculated)"},
        {"FF", false, "N/A"},
    };
    for (const auto& [identifier, is_monitor, text] : names)
        EXPECT_EQ(grab_CAN_mode6_OBDMID_TESTID_description(identifier, is_monitor, lists), text)
            << identifier;
}

} // namespace brivant
