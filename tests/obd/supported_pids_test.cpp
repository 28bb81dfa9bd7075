#include "base/console_log.h"
#include "obd/supported_pids.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

QString map_of(const QString& reply, int group = 0) {
    group_bitmaps maps;
    handle_00_replies(reply, group, maps);
    return group >= 0 && group < 3 ? maps[static_cast<size_t>(group)] : maps[0] + maps[1] + maps[2];
}

const obd_groups engine_only{{"7E8", {"04", "0C"}}};
const obd_groups two_ecus{{"7E8", {"04", "0C"}}, {"7E9", {"0D", "05"}}};

} // namespace

TEST(handle_00_replies, takes_the_engines_map) {
    const struct {
        const char* reply;
        int group;
        const char* map;
    } cases[] = {
        {"7E9 06 41 00 98 18 80 01\r7E8 06 41 00 BE 3F A8 13\r\r>", 0, "BE3FA813"},
        {"7E906410098188001", 0, "98188001"},
        {"7EB06412080018001\r7E906412080018001\r7E8064120B819A015\r\r>", 1, "B819A015"},
        {"18 DA F1 10 06 41 00 BF FE B9 93 \r18 DA F1 18 06 41 00 98 18 00 01 \r\r>", 0, "BFFEB993"},
        {"18 DA F1 40 06 41 00 80 00 00 01 \r18 DA F1 11 06 41 00 BF DF B9 93 \r\r>", 0, "80000001"},
        {"18DAF11006414080000001", 2, "80000001"},
        {"48 6B 18 41 00 80 10 80 00 C0 \r48 6B 10 41 00 BE 3E B8 11 FA \r\r>", 0, "BE3EB811"},
        {"486B1841004100B81177", 0, "4100B811"}, // data like a PID
        {"86F1124120B001A0013C\r\r>", 1, "B001A001"},
        // Refused, cut short, no message: no map.
        {"7E8037F011200000000\r7E906410098188001", 0, "98188001"},
        {"7E8064100BE3F\r\nBUS INIT: OK\r\n", 0, ""},
        {"83 F1 10 7F 01 11 15 \r\r>", 0, ""},
        {"NO DATA\r\r>", 0, ""},
        {"", 0, ""},
        {"7E906416098188001", 3, ""},
        {"7E906416098188001", -1, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(map_of(c.reply, c.group), QString(c.map)) << c.reply;
}

TEST(supported_pids, are_read_from_the_bits) {
    EXPECT_EQ(pids_of_bitmap("BE3FA813", 0).join(' '),
              "01 03 04 05 06 07 0B 0C 0D 0E 0F 10 11 13 15 1C 1F 20");
    EXPECT_EQ(pids_of_bitmap("C", 0x20).join(' '), "21 22");
    EXPECT_EQ(pids_of_bitmap("0000000F13", 0xE0).join(' '), "FD FE FF");
    EXPECT_EQ(pids_of_bitmap("", 0), QStringList());

    EXPECT_TRUE(is_this_code_available("BE3FA813", "20", 0));
    EXPECT_FALSE(is_this_code_available("BE3FA812", "20", 0));
    EXPECT_FALSE(is_this_code_available("BE3FA813", "02", 0));
    EXPECT_TRUE(is_this_code_available("80000000", "A1", 5));
    for (const char* outside : {"00", "21", "", "zz", "FFFFFFFF"})
        EXPECT_FALSE(is_this_code_available("FFFFFFFFFFFFFFFF", outside, 0)) << outside;
    EXPECT_FALSE(is_this_code_available("FFFFFFF", "01", 0));
    EXPECT_FALSE(is_this_code_available("FFFFFFFF", "01", -2147483647));
}

TEST(sample_set, is_checked_against_each_ecu) {
    silence_console_log();
    const std::pair<QStringList, bool> cases[] = {
        {{"0C|7E8", "0D|7E9"}, true}, {{"0C|7E8", "0C|7E9"}, false}, {{"0C|7EA"}, true}, {{}, true},
        {{"0C", "0C|7E9"}, true}, // without an ECU the check ends with the result so far
        {{"0C|7E9", "0C"}, false},
    };
    for (const auto& [samples, available] : cases)
        EXPECT_EQ(isEveryItemInSampleSetAvailable(samples, two_ecus, 6), available)
            << samples.join(' ').toStdString();
    EXPECT_TRUE(isEveryItemInSampleSetAvailable({"0C|7E8"}, {}, 6));
    EXPECT_FALSE(isPID_in_avail_pid_list({{"86F110", {"0D"}}}, {"0C", "83F110"}, 5));
    EXPECT_TRUE(isPID_in_avail_pid_list({{"86F110", {"0D"}}}, {"0D", "83F110"}, 5));
    EXPECT_FALSE(split_sample_item("|7E8"));
    EXPECT_EQ(split_sample_item("0C|7E8|9")->header, "7E8");
}

TEST(sample_set, is_rewritten_for_another_car) {
    const obd_groups kwp{{"86F110", {"0C"}}, {"86F111", {"05"}}};
    const obd_groups engine_second{{"18DAF118", {"05"}}, {"18DAF110", {"0C", "0D"}}};
    const obd_groups transmission_third{{"7E8", {"0C"}}, {"7EA", {"05"}}, {"7E9", {"0D"}}};
    const struct {
        const char* samples;
        obd_groups ecus;
        int protocol;
        const char* result;
    } cases[] = {
        {"0D 11 0C 04", engine_only, 6, "0C|7E8 04|7E8"},
        {"0C|486B10 0D|486B10 04|7EA", engine_only, 6, "0C|7E8 04|7E8"},
        {"0C|7E8 0C|7E9", two_ecus, 6, "0C|7E8"},
        {"0C|7E8 05|7E9 04|7E8", two_ecus, 6, "0C|7E8 05|7E9 04|7E9"}, // the header is carried over
        {"0C|7E8 05|7E9", engine_only, 6, "0C|7E8"},
        {"0C|7E8 05|18DAF111 0C|xy", kwp, 5, "0C|86F110 05|86F111 0C|86F111"},
        {"0D 0C|7E9 05", engine_second, 7, "0D|18DAF110 0C|18DAF110"},
        {"05|7E9 0D|7E9", transmission_third, 6, "05|7EA"}, // the one at place 1 counts
        {"05|7E9 |7E8 nonsense", {{"7E9", {"05"}}}, 6, ""},
        {"0C|7E8 05", {}, 6, "0C|7E8 05"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fixSamplePids(QString(c.samples).split(' '), c.ecus, c.protocol).join(' '), c.result)
            << c.samples;
    EXPECT_EQ(fixSamplePids({}, engine_only, 6), QStringList());
}

TEST(available_pids, survive_storage_and_are_compared_by_value) {
    EXPECT_EQ(pids_from_json(arrayToJsonStr(two_ecus)), two_ecus);
    EXPECT_EQ(pids_from_json("[{\"pidSet\": [\"0C\"],\n \"header\": \"7E8\"}]"),
              obd_groups({{"7E8", {"0C"}}}));
    for (const char* text :
         {"", "-1", "{}", "[1]", "[{\"header\": \"7E8\"}]", "[{\"header\":\"7E8\",\"pidSet\":[1]}]",
          "[{\"header\":\"7E8\",\"pidSet\":[]},[]]", "[[[[["})
        EXPECT_EQ(pids_from_json(text), obd_groups()) << text;

    EXPECT_TRUE(same_pid_sets(two_ecus, {two_ecus[1], two_ecus[0]}));
    EXPECT_FALSE(same_pid_sets(two_ecus, engine_only));
    EXPECT_FALSE(same_pid_sets(engine_only, two_ecus));
    EXPECT_FALSE(same_pid_sets({{"7E8", {"0C", "0D"}}}, {{"7E8", {"0D", "0C"}}}));
    EXPECT_TRUE(same_pid_sets({{"86F110", {"0C"}}}, {{"83F110", {"0C"}}}, 5));
    EXPECT_TRUE(same_pid_sets({}, {}));
}

} // namespace brivant
