#include "base/string_table.h"
#include "base/text_resources.h"
#include "obd/readiness.h"
#include "obd/reply.h"
#include "obd/trouble_codes.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

constexpr int kwp = 5;
constexpr int can_11_bit = 6;
constexpr int can_29_bit = 7;

std::string joined(const QStringList& codes) {
    return codes.join(' ').toStdString();
}

std::string flat(const QString& mode, const QString& reply, const QString& protocol) {
    return joined(work_reply_to_error_codes_pid(mode, reply, protocol));
}

} // namespace

TEST(trouble_codes, one_code) {
    const QPair<const char*, const char*> pairs[] = {
        {"0133", "P0133"}, {"4123", "C0123"}, {"B2c4", "B32c4"}, {"C1A4", "U01A4"}, {"0000", "P0000"},
        {"FFFF", "U3FFF"}, {"013", ""},       {"01333", ""},     {"NODA", ""},      {"", ""},
    };
    for (const auto& [digits, code] : pairs)
        EXPECT_EQ(pull_DTC_code(QString(digits)).toStdString(), code) << digits;
}

TEST(trouble_codes, of_one_ECU) {
    const std::tuple<QStringList, int, const char*> examples[] = {
        // CAN, one frame
        {{"06430201330220"}, can_11_bit, "P0133 P0220"},
        {{"0443010420"}, can_29_bit, "P0420"},
        {{"0647020133022000"}, can_11_bit, "P0133 P0220"},
        {{"0443010420000000"}, can_11_bit, "P0420"}, // shown padded to eight bytes
        {{"024300"}, can_11_bit, ""},
        {{"0A430401330220"}, can_11_bit, ""}, // "0A" is 0 as a decimal number
        {{"037F0312"}, can_11_bit, ""},
        {{"0643020133"}, can_11_bit, "P0133"}, // cut short
        {{""}, can_11_bit, ""},
        {{"4"}, can_11_bit, ""},
        // CAN, several frames: the group behind as many groups as there are frames, again and again
        {{"1008430301330220", "2103000000000000"}, can_11_bit, "P0300 P0300 P0300"},
        {{"100A430401330220", "2103000420000000"}, can_11_bit, ""},
        {{"1006430201330220", "21"}, can_11_bit, ""}, // that group lies past the end
        {{"0", ""}, can_11_bit, ""},
        // Older protocols, with the check byte
        {{"43013300000000AA"}, kwp, "P0133"},
        {{"43000000000000AA"}, kwp, ""},
        {{"43013302200300AA", "43C1A400000000AA"}, kwp, "P0133 P0220 P0300 U01A4"},
        {{"43013302200300AA", "43", ""}, kwp, "P0133 P0220 P0300"},
        {{"7F0312AA"}, kwp, ""},
        {{"43"}, kwp, ""},
        {{"4"}, kwp, ""},
        // Unknown protocol, no message
        {{"06430201330220"}, -1, ""},
        {{"06430201330220"}, 13, ""},
        {{}, can_11_bit, ""},
        {{}, kwp, ""},
    };
    for (const auto& [messages, protocol, codes] : examples)
        EXPECT_EQ(joined(l_pullErrorsFromSingleMsg(messages, protocol)), codes) << joined(messages);
}

TEST(trouble_codes, of_every_ECU_of_a_reply) {
    const obd_groups two_ecus{{"7E8", {"P0133", "P0220"}}, {"7E9", {}}};
    const auto codes_of = [](const char* text, int protocol) {
        return l_workoutReadCodes(reply({text, protocol, true}));
    };
    EXPECT_EQ(codes_of("7E9 02 43 00 \r7E8 06 43 02 01 33 02 20 \r\r>", can_11_bit), two_ecus);
    EXPECT_EQ(codes_of("18 DA F1 40 02 47 00 \r18 DA F1 11 06 47 02 22 6D 22 6E \r\r>", can_29_bit),
              (obd_groups{{"18DAF111", {"P226D", "P226E"}}, {"18DAF140", {}}}));
    // Without headers nothing is invented.
    for (const obd_group& group : codes_of("4300\r4300\r\r>", can_11_bit))
        EXPECT_EQ(group.pidSet, QStringList());
    EXPECT_TRUE(codes_of("7E8 06 43 02 01 33 02 20", -1).isEmpty());

    EXPECT_EQ(pull_dtc_body_by_ECU(two_ecus, "7E8", can_11_bit), (QStringList{"P0133", "P0220"}));
    EXPECT_EQ(pull_dtc_body_by_ECU(two_ecus, "7EA", can_11_bit), QStringList{"N/A"});
    EXPECT_EQ(pull_dtcGruped_pidSet_by_ECU(two_ecus, "7E9", can_11_bit), QStringList());
    EXPECT_EQ(pull_dtcGruped_pidSet_by_ECU(two_ecus, "7EA", can_11_bit), std::nullopt);
    // On KWP the first header byte carries the length.
    EXPECT_TRUE(pull_dtcGruped_pidSet_by_ECU({{"86F112", {"P0133"}}}, "83F112", kwp).has_value());
}

TEST(trouble_codes, flat_list) {
    const QString can = "AUTO, ISO 15765-4 (CAN 11/500)";
    const QString iso = "AUTO, ISO 9141-2";
    // CAN: a count, then the codes
    EXPECT_EQ(flat("03", "43 01 01 2C 02 20 \r\r>", can), "P012C"); // no more than the count
    EXPECT_EQ(flat("03", "43 02 01 02 01 13 \r\r>", can), "P0102 P0113");
    EXPECT_EQ(flat("03", "00A\r0:430401020113\r1:01230222000000\r\r>", can), "P0102 P0113 P0123 P0222");
    EXPECT_EQ(flat("07", "00A\r0:470401020113\r1:01230222000000\r\r>", iso), "P0102 P0113 P0123 P0222");
    EXPECT_EQ(flat("03", "4300\r4300\r\r>", can), "");
    EXPECT_EQ(flat("07", "4700\r4700\r\r>", can), "");
    EXPECT_EQ(flat("03", "4303 0133\r430102 20\r>", can), "P0133"); // the count promises more than is there
    EXPECT_EQ(flat("07", "43010133", can), "");
    EXPECT_EQ(flat("03", "7E8 06 43 02 01 33 02 20", can), "");
    // Older protocols: lines of three codes, the first one always
    EXPECT_EQ(flat("03", "43 01 02 11 20 12 20 \r43 15 14 15 15 00 00 \r\r>", iso),
              "P0102 P1120 P1220 P1514 P1515");
    EXPECT_EQ(flat("03", "43 01 33 00 00 00 00", iso), "P0133");
    EXPECT_EQ(flat("03", "43 01 33 00 A1 02 20", iso), "P0133 P0220");
    EXPECT_EQ(flat("03", "43 01 33 C1 00 02 20", iso), "P0133 P0220");
    EXPECT_EQ(flat("03", "43 00 00 00 00 00 00\r\n\r\n>", iso), "P0000");
    EXPECT_EQ(flat("03", "43 01 33", iso), "P0133");
    // No codes in these
    for (const QString& protocol : {can, iso})
        for (const char* reply :
             {"7F 03 12 \r\r>", "NO DATA\r\r>", "BUS INIT: ERROR\r\r>", "?", "~", "", "\r>", ":"})
            EXPECT_EQ(flat("03", reply, protocol), "") << reply;
}

TEST(trouble_codes, description) {
    const QMap<QString, QString> dictionary{{"P0133", " O2 sensor slow"}};
    EXPECT_EQ(look_upCode("P0133", dictionary), " O2 sensor slow");
    const std::pair<const char*, const char*> forms[] = {
        {"P0134", " (by its form defined by the standard: fuel and air metering, emission controls)"},
        {"P1351", " (by its form maker-specific: ignition or misfire)"},
        {"P0D99", " (by its form defined by the standard: hybrid or electric drive)"},
        {"P1A20", " (by its form maker-specific: engine and transmission)"},
        {"P2741", " (by its form defined by the standard: transmission)"},
        {"P33FF", " (by its form maker-specific: engine and transmission)"},
        {"P3400", " (by its form defined by the standard: engine and transmission)"},
        {"C1234", " (by its form maker-specific: chassis)"},
        {"B3001", " (by its form reserved by the standard: body)"},
        {"U3001", " (by its form defined by the standard: network of the control modules)"},
        {"U2001", " (by its form maker-specific: network of the control modules)"},
        {"P0000", ""}, // fills up messages
        {"no freeze frame is stored", ""},
    };
    for (const auto& [code, form] : forms)
        EXPECT_EQ(look_upCode(code, dictionary), QStringLiteral("Code not found in our DB") + form) << code;
    EXPECT_EQ(look_upCode(localised("NO_CODES"), {}), localised("LOOK_4_PENDING"));
    // A line without a blank would end the shipped list before its last code.
    const auto shipped = text_resources().get_dictionary_from_resource("P0_Codes", "txt", " ");
    const std::pair<const char*, const char*> codes[] = {
        {"U0460", " Invalid Data Received From Parking Assist Control Module"},
        {"U0221", " Lost Communication With Door Switch G"},
        {"U0222", " Lost Communication With Door Window Motor A"},
        {"U0228", " Lost Communication With Door Window Motor G"},
        {"U0229", " Lost Communication With Heated Steering Wheel Module"},
        {"U0230", " Lost Communication With Rear Gate Module"},
        {"U0236", " Lost Communication With Column Lock Module"},
        {"U0252", " Lost Communication With Lighting Control Module - Rear B"},
        {"P2578", " Turbocharger Speed Sensor Circuit"},
        {"P2681", " Engine Coolant Bypass Valve Control Circuit/Open"},
        {"P2685", " Actuator Supply Voltage C Circuit Low"},
        {"P2806", " Transmission Range Sensor Alignment"},
        {"P0B6A", " Hybrid Battery Voltage Sense J Circuit Low"},
        {"P0BEF", " Drive Motor A Phase W Current Sensor Circuit Low"},
        {"P0C5B", " Drive Motor A Position Sensor Circuit B Range/Performance"},
        {"U0331", " Software Incompatibility With Body Control Module A"},
    };
    for (const auto& [code, text] : codes)
        EXPECT_EQ(look_upCode(code, shipped.value()), text) << code;
}

TEST(readiness, rows_and_summary) {
    const text_resources lists;
    const auto states = [](const QList<readiness_row>& rows) {
        QStringList list;
        for (const readiness_row& row : rows)
            list += row.state;
        return joined(list);
    };

    const QList<readiness_row> ready = handle_readiness_codes("076500", lists);
    EXPECT_EQ(states(ready), "OK OK OK OK N/A OK N/A N/A OK OK N/A");
    EXPECT_EQ(ready[2], (readiness_row{"OK", "Components", "Continous"}));
    EXPECT_EQ(ready[10], (readiness_row{"N/A", "EGR/VVT system", "Non-Continous"}));
    EXPECT_EQ(readiness_summary(ready), "7<font color=#66ff33>[OK]</font> out of 7 [avail] ");

    // Bits of monitors that are not supported say nothing.
    const QList<readiness_row> pending = handle_readiness_codes("5381FF", lists);
    EXPECT_EQ(states(pending), "X OK N/A X N/A N/A N/A N/A N/A N/A X");
    EXPECT_EQ(readiness_summary(pending), "1<font color=#66ff33>[OK]</font> out of 4 [avail] ");

    const QList<readiness_row> compression = handle_readiness_codes("0E E9 68", lists);
    EXPECT_EQ(compression[6], (readiness_row{"X", "Boost pressure", "Non-Continous"}));

    for (const char* flags : {"", "07", "0765", "NODATA"})
        EXPECT_EQ(states(handle_readiness_codes(flags, lists)),
                  "N/A N/A N/A N/A N/A N/A N/A N/A N/A N/A N/A");
}

} // namespace brivant
