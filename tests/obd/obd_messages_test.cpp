#include "base/console_log.h"
#include "obd/ecu_names.h"
#include "obd/reply.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace brivant {

namespace {

// The groups of a reply as "header: body body; header: ...", and the data of each ECU.
struct taken_apart {
    QStringList groups;
    QStringList data;
    taken_apart(const QString& text, int protocol) {
        silence_console_log();
        const reply whole({text, protocol, true});
        for (const ecu_said& ecu : whole.ecus()) {
            groups += ecu.header + ": " + ecu.bodies.join(' ');
            data += ecu.data;
        }
    }
};

struct reply_case {
    const char* reply;
    int protocol;
    const char* expected;
};

} // namespace

TEST(messages, are_grouped_by_ecu) {
    // clang-format off
    const reply_case cases[] = {
        {"7E9 06 41 00 98 18 80 11\r7E8 06 41 00 BE 3F A8 13", 6, "7E8: 064100BE3FA813; 7E9: 06410098188011"},
        {"7EB06410100040000\r7E906410100040000\r7E8064101000EE968\r\r>", 6,
         "7E8: 064101000EE968; 7E9: 06410100040000; 7EB: 06410100040000"},
        {"18 DA F1 40 02 47 00 \r18 DA F1 11 06 47 02 22 6D 22 6E \r\r>", 7,
         "18DAF111: 064702226D226E; 18DAF140: 024700"},
        {"48 6B 10 41 00 BE 3E B8 11 FA \r48 6B 18 41 00 80 10 80 00 C0 \r\r>", 2,
         "486B10: 4100BE3EB811FA; 486B18: 410080108000C0"},
        // The format byte of ISO 14230-4 differs with the length.
        {"83 F1 12 47 01 CE\r86 F1 12 41 00 98 3B 20 13 D0\r", 5, "83F112: 4701CE 4100983B2013D0"},
        {"83 F1 12 47 01 CE\r86 F1 12 41 00 98 3B 20 13 D0\r", 3, "83F112: 4701CE; 86F112: 4100983B2013D0"},
        {"83 F1 10 47 01 CE\r83 F1 12 47 01 CE\r", 4, "83F110: 4701CE; 83F112: 4701CE"},
        // What is no message makes no ECU.
        {"\r\n\r\nBUS INIT: ...OK\r\n48 6B 10 41 0C 16 44 6A\r\n\n7E\r\n>", 3, "486B10: 410C16446A; 7E: "},
        {"7E8 03 41 0D 3C <DATA ERROR\r\r>", 6, ""},
        {"7E8 03 41 0D 3C \r7E9 03 41 0D <RX ERROR\r\r>", 6, "7E8: 03410D3C"},
        {"?\r\r>", 6, "?: "},
        {"\r\r>", 6, ""},
        // "Response pending" gives way to the answer, and stays when there is none.
        {"7E8 03 7F 09 78\r7E9 03 7F 09 78 00 00\r7E8 04 49 02 01 31\r", 6,
         "7E8: 0449020131; 7E9: 037F09780000"},
        {"48 6B 10 7F 09 78\r48 6B 11 41 0D 3C", 3, "486B10: 7F0978; 486B11: 410D3C"},
        {"48 6B 10 7F 09 78\r48 6B 10 41 0D 3C", 3, "486B10: 410D3C"}, // without its check byte
        {"83 F1 10 7F 09 78 84\r87 F1 10 49 02 01 00 00 00 57 2B\r", 5, "87F110: 490201000000572B"},
        {"83 F1 10 7F 01 11 15 \r\r>", 5, "83F110: 7F011115"},
        {"7E8 03 41 0D 3C\r7E9 03 41 0D 3C", -1, ""},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(taken_apart(c.reply, c.protocol).groups.join("; "), c.expected) << c.reply;
    EXPECT_EQ(pullObdMsgs("7E803410D3C\r7E903410D3C", 0), obd_messages(2));
}

TEST(messages, of_several_frames_are_joined) {
    // clang-format off
    const reply_case cases[] = {
        {"7E8 10 14 49 02 01 4C 46 56 \r7E8 21 33 42 32 38 52 38 41 \r7E8 22 33 30 30 30 30 30 30 \r\r>", 6,
         "4902014C46563342323852384133303030303030"},
        // Frames of two ECUs, mixed and padded behind their end.
        {"7E8 10 13 49 04 01 35 36 30 \r7E8 21 32 38 39 34 39 41 43 \r7E9 10 13 49 04 01 35 36 30 \r"
         "7E8 22 00 00 00 00 00 00 31 \r7E9 21 32 38 39 35 34 41 43 \r7E9 22 00 00 00 00 00 00 00 \r\r>", 6,
         "49040135363032383934394143000000000000; 49040135363032383935344143000000000000"},
        {"7E8 10 14 49 02 01 31 44 34\r7E8 21 47 50", 6, "4902013144344750000000000000000000000000"},
        {"18 DA F1 10 10 14 49 02 01 31 43 34 \r18 DA F1 10 21 4D 4F 43 4B 32 39 53 \r"
         "18 DA F1 10 22 42 49 54 30 30 30 31 \r\r>", 7, "4902013143344D4F434B32395342495430303031"},
        // The same single frame twice is one answer.
        {"SEARCHING...\r7E8 06 41 00 FF FF FF FF \r7E8 06 41 00 FF FF FF FF \r\r>", 6, "4100FFFFFFFF"},
        {"7E8 06 41 00 BE 3F A8 13 00", 6, "4100BE3FA81300"},
        {"486B1049020100000057B3\r486B104902024458 2D5399\r", 1, "490200000057B344582D5399"},
        {"486B1049\r486B104902024458", 1, "N/A"},
        {"7E8 1\r", 6, "N/A"},
        {"7E8 10 1\r7E8 21 00", 6, "N/A"},
        {"7E8 10 14 49\r7E8 2", 6, "N/A"},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(taken_apart(c.reply, c.protocol).data.join("; "), c.expected) << c.reply;
    EXPECT_EQ(l_pullOBDFromSingleGroupedMsg({"4100"}, -1), "");
    EXPECT_EQ(l_pullOBDFromSingleGroupedMsg({}, 6), "");
}

TEST(messages, without_headers_are_joined_up_to_their_count) {
    EXPECT_EQ(grab_CAN_msg("014\r0:490201314434\r1:47503030523535\r2:42313233343536\r"),
              "4902013144344750303052353542313233343536");
    EXPECT_EQ(grab_CAN_msg("00A\r\n0: 43 04 01 02 01 13\r\n\r\n1: 01 23 02 22 00 00 00\r\n>"),
              "43040102011301230222");
    EXPECT_EQ(grab_CAN_msg("006\r0:430201020113\r006\r0:430203040506\r"), "430201020113");
    EXPECT_EQ(grab_CAN_msg("00A\r0:4304901020113\r1:01230222"), "43040102011301230222");
    for (const char* none : {"", "014", "0:4902", "NODATA\r0:4902", "000\r0:4902"})
        EXPECT_EQ(grab_CAN_msg(none), "") << none;
}

TEST(messages, that_are_single_lose_what_hangs_on_behind) {
    EXPECT_EQ(l_pullOBDFromSingleMsg("03410D3C000000", 6), "410D3C000000");
    EXPECT_EQ(l_pullOBDFromSingleMsg("410D3CA5", 3), "410D3CA5");
    EXPECT_EQ(l_pullOBDFromSingleMsg("410D3CA5", -1), "");
    EXPECT_EQ(l_pullOBDFromSingleMsg("?", 6), "");

    EXPECT_EQ(data_of_single_message("03410D3C000000", 6), "410D3C");
    EXPECT_EQ(data_of_single_message("07410D", 7), "410D");
    EXPECT_EQ(data_of_single_message("1014490201", 6), "14490201");
    EXPECT_EQ(data_of_single_message("410D3CA5", 3), "410D3C");
    EXPECT_EQ(data_of_single_message("0", 6) + data_of_single_message("4", 5), "");
}

TEST(messages, of_one_line_are_filtered_by_ecu) {
    const std::optional<QString> nothing;
    EXPECT_EQ(pull_PID_msg("7E803410D3C", "0D", "7E"), QString("410D3C"));
    EXPECT_EQ(pull_PID_msg("7E803410D3C", "0D", "7E8"), nothing);
    EXPECT_EQ(pull_PID_msg("18DAF11003410D3C", "0D", "10"), QString("410D3C"));
    EXPECT_EQ(pull_PID_msg("18DAF11003410D3C", "0D", "18"), nothing);
    EXPECT_EQ(pull_PID_msg("486B10410D3CA5", "0D", ""), QString("410D3CA5"));
    EXPECT_EQ(pull_PID_msg("486B10410D3CA5", "0D", "18"), nothing);
    EXPECT_EQ(pull_PID_msg("486B10410D410DA5", "0D", ""), QString("410D410DA5")); // data like a PID
    for (const char* line : {"", "7E8", "486B10410D3CA", "NODATA"})
        EXPECT_EQ(pull_PID_msg(line, "0D", ""), nothing) << line;
}

TEST(messages, of_computed_values_are_encoded) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const std::tuple<const char*, double, unit_system, const char*> examples[] = {
        {"10", 10.009, unit_system::metric, "411003E8"},
        {"10", 2, unit_system::imperial, "411005DC"},
        {"10", 655.35, unit_system::metric, "41E4FFFF"},
        {"E4", 30, unit_system::imperial, "41E404FB"},
        {"E4", infinite, unit_system::metric, "41E4FFFF"},
        {"E4", -infinite, unit_system::metric, "41E40000"},
        {"E4", std::nan(""), unit_system::metric, "41E40000"},
        {"0C", 1, unit_system::metric, ""},
    };
    for (const auto& [pid, value, units, text] : examples)
        EXPECT_EQ(encode_to_OBD(pid, value, units), text) << pid << ' ' << value;
}

TEST(ecu_names, are_read_from_line_and_header) {
    const char* const lines[][2] = {
        {"7E8064100BE3FA813", "Engine"},          {"7E90641009818", "Transmission"},
        {"7EB06410098180001", "ECU=7EB"},         {"18DAF110064100BFFEB993", "Engine"},
        {"18DAF11006414080000001", "ECU=F1"}, // "4140" does not tell a 29-bit line
        {"486B184100BE3EB811C9", "Transmission"}, {"486B1041004100B811C9", "Engine"}, // data like a PID
        {"486B134100BE1FB811AD", "ECU=13"},       {"", "ECU="},
    };
    for (const auto& [line, name] : lines)
        EXPECT_EQ(pull_ECU(line), name) << line;

    const struct {
        const char* header;
        int protocol;
        const char* label;
        bool is_engine;
        int engine_or_transmission;
    } headers[] = {
        {"7E8", 6, "Eng.", true, 0},
        {"7E9", 11, "Trans.", false, 1},
        {"486B10", 3, "Eng.", true, 0},
        {"486B18", 1, "Trans.", false, -1},
        {"86F111", 5, "", false, 1},
        {"18DAF110", 7, "Eng.", true, 0},
        {"18DAF118", 9, "Trans.", false, -1},
        {"18DAF111", 10, "", false, 1},
        {"7E8", -1, "", false, 0},
        {"48", 3, "", false, -1},
        {"18DA", 7, "", false, -1},
    };
    for (const auto& c : headers) {
        EXPECT_EQ(l_pull_ECU(c.header, c.protocol), c.label) << c.header;
        EXPECT_EQ(isThisEngineHeader(c.header, c.protocol), c.is_engine) << c.header;
        EXPECT_EQ(thisHeaderIsEngOrTranny(c.header), c.engine_or_transmission) << c.header;
    }
    EXPECT_EQ(findEngineEcuIdx({{"18DAF118", {}}, {"18DAF110", {}}}, 7), 1);
    EXPECT_EQ(findEngineEcuIdx({{"18DAF128", {}}, {"18DAF111", {}}}, 7), 0);
    EXPECT_EQ(findEngineEcuIdx({}, 7), 0);

    EXPECT_TRUE(same_ecu("86F110", "83F110", 5));
    EXPECT_TRUE(same_ecu("86F110", "93F110", 5)); // 19 bytes long
    EXPECT_FALSE(same_ecu("86F110", "83F110", 3));
    EXPECT_FALSE(same_ecu("86F110", "C6F110", 4));
    EXPECT_FALSE(same_ecu("86F110", "", 4));
    for (const char* shown : {"86F110", "87F110", "93F110"})
        EXPECT_EQ(ecu_label(shown), QString("80F110"));
    for (const char* shown : {"C6F110", "486B10", "7E8", "18DAF110"})
        EXPECT_EQ(ecu_label(shown), QString(QLatin1String(shown) == "C6F110" ? "C0F110" : shown));
}

} // namespace brivant
