#include "base/anonymity.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct anonymous_for_now {
    anonymous_for_now() { set_anonymous(true); }
    ~anonymous_for_now() {
        set_anonymous(false);
        note_command("01 00");
    }
};

} // namespace

TEST(anonymity, leaves_the_maker_of_a_vin) {
    const QString stars = "**************";
    const QString raw = "> 09 02\n014\n0:490201314731\n1:4A433534343452\n> 01 00\n7E8064100BE3EB813";
    EXPECT_EQ(without_vin("VIN  1G1JC5444R7252367"), "VIN  1G1JC5444R7252367") << "nobody asked for it";
    EXPECT_EQ(for_others(raw), raw);
    const anonymous_for_now on;
    const std::pair<QString, QString> texts[] = {
        {"VIN  1G1JC5444R7252367\n", "VIN  1G1" + stars + "\n"},
        {"(1G1JC5444R7252367), 1G1JC5444R7252367.", "(1G1" + stars + "), 1G1" + stars + "."},
        {"VIN  115444R7252367", "VIN  115" + stars}, // as the older protocols are read
        {"{\"name\":\"VIN\",\"value\":\"115444R7252367\"}",
         "{\"name\":\"VIN\",\"value\":\"115" + stars + "\"}"},
        {"VIN: By SAE J1979 nothing", "VIN: By SAE J1979 nothing"},
        {"7E8064100BE3EB813", "7E8064100BE3EB813"}, // seventeen digits of a reply
        {"01G1JC5444R7252367X 18 characters", "01G1JC5444R7252367X 18 characters"},
        {"ABCDEFGHJKLMNPRST no digit", "ABCDEFGHJKLMNPRST no digit"},
    };
    for (const auto& [text, left] : texts)
        EXPECT_EQ(without_vin(text), left) << text.toStdString();
    EXPECT_EQ(for_others(raw), "> 09 02\n014\n**:**\n**:**\n> 01 00\n7E8064100BE3EB813");
    EXPECT_EQ(for_others("48 6B 10 49 02 01 00 00 00 31 AE\nVIN 1G1JC5444R7252367"),
              QString("**").append(QString(" **").repeated(10)) + "\nVIN 1G1" + stars);
}

TEST(anonymity, of_the_console_log_begins_with_the_command) {
    const anonymous_for_now on;
    for (const char* asks : {"09 02\r", "0902 5", "1a 90", "22 F1 90\r"}) {
        note_command(asks);
        EXPECT_EQ(for_console_log("Rcvd:[1:4A433534]"), "Rcvd:[**:**]") << asks; // a piece of the reply
    }
    note_command("01 0C");
    EXPECT_EQ(for_console_log("Rcvd:[410C1AF8]"), "Rcvd:[410C1AF8]");
    EXPECT_EQ(for_console_log("Rcvd:[7E8 10 14 49 02 01 31]"), "Rcvd:[** ** ** ** ** ** **]") << "a late one";
}

} // namespace brivant
