#include "obd/reply_text.h"

#include <QRegularExpression>
#include <gtest/gtest.h>
#include <random>

namespace brivant {

TEST(prepReply, leaves_the_data_and_the_inner_line_ends) {
    const char* const cases[][2] = {
        {"SEARCHING...\r41 00 BE 3F A8 13\r\r>", "4100BE3FA813"},
        {"UNABLE TO CONNECT\r\r>", "UNABLETOCONNECT"},
        {"BUS INIT: ...ERROR\r\r>", "BUSINIT:ERROR"},
        {"BUS INIT: OK\r\n41 0C 000\r\n7F 01 12\r\n\r\n>", "BUSINIT:OK\r\n410C000\r\n7F0112"},
        {". . .", "..."}, // the blanks go after the dots
        {".SEARCHING.....", ""},
        {"SEARCHSEARCHING...ING...41", "SEARCHING41"},
        {"> \r>\n", ""},
        {"", ""},
    };
    for (const auto& [reply, prepared] : cases)
        EXPECT_EQ(prepReply(reply), QString(prepared)) << reply;
}

TEST(prepReply, is_the_six_replacements_in_their_order) {
    const auto by_patterns = [](QString text) {
        for (const char* pattern :
             {"SEARCHING[.][.][.]", "[.][.][.]", " ", ">", "^[\r\n]+", "[\r\n]+$", "^[\r]+", "[\r]+$"})
            text.remove(QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption));
        return text;
    };
    const QStringList pieces{"SEARCHING...", "Searching", "S", ".", "..", "...", " ", ">", "\r", "\n", "41"};
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        QString text;
        for (auto n = random() % 12; n > 0; --n)
            text += pieces[random() % pieces.size()];
        ASSERT_EQ(prepReply(text), by_patterns(text)) << text.toStdString();
    }
}

TEST(clean_a_reply, keeps_the_lines) {
    EXPECT_EQ(clean_a_reply("\r\n41 00\r\n\r\n7F 01 12\r\r>"), "41 00\r7F 01 12\r");
    EXPECT_EQ(clean_a_reply("BUS INIT: ...OK\r41 00 BE\r\r>"), "...OK\r41 00 BE\r");
    EXPECT_EQ(fix_3dots(""), "\r");
    EXPECT_EQ(myTrim("  01 00 "), "01 00");
}

TEST(check_bad_reply, looks_for_the_echoed_pid) {
    EXPECT_EQ(check_bad_reply("41 0C 1A F8", "0C", "0C"), "41 0C 1A F8");
    for (const char* reply : {"41 0D 1A F8", "~", "", "41 0", "?"})
        EXPECT_EQ(check_bad_reply(reply, "0C", "0C"), "~") << reply;
}

TEST(hex, reads_and_writes) {
    EXPECT_EQ(convertStr2Byte(u"4100"), 16640u);
    EXPECT_EQ(convertStr2Byte(u" a6\r"), 166u);
    EXPECT_EQ(convertStr2Byte(u"1FFFFFFFF00000000000"), 0xFFFFFFFFu);
    for (const QString& none : {QString(), QString("?"), QString("\uFF11"), QString("-1")})
        EXPECT_EQ(convertStr2Byte(none), 0u) << none.toStdString();
    EXPECT_EQ(convertByte2HexStr(12), "0C");
    EXPECT_EQ(charToNibble(u'f'), 15);
    EXPECT_EQ(charToNibble(u'G'), 0);
    EXPECT_EQ(fromHexString(u"41fFg1"), QByteArray("\x41\xFF\x01"));
    EXPECT_EQ(fromHexString(u"ABC"), QByteArray());
    EXPECT_FALSE(is_hex(u""));
}

TEST(pieces, are_found_split_and_padded) {
    EXPECT_TRUE(string_has_Tokens("AUTO, ISO 15765-4", "OK|ISO|SAE"));
    EXPECT_FALSE(string_has_Tokens("?", "OK|ELM"));
    EXPECT_FALSE(string_has_Tokens("OK", QString()));
    EXPECT_FALSE(string_has_Tokens("OK", "|"));

    EXPECT_EQ(count_items_in_Str(",a,,b;c,", ",;"), 3);
    EXPECT_EQ(count_items_in_Str(QString("a,").repeated(400), ","), 150);
    EXPECT_EQ(Pull_line_into_array(",a,,b", ","), QStringList({"", "a", "", "b"}));
    EXPECT_EQ(Pull_line_into_array("ab", ""), QStringList("ab"));
    EXPECT_EQ(myReplace("\r41 00\n\r7F", "\r\n", "; "), "41 00; 7F; ");
    EXPECT_EQ(myReplace("41 00", "\r\n", "; "), "41 00");
    EXPECT_EQ(replaceStrRegx("a1B2b3", "b\\d", "-"), "a1--");
    EXPECT_EQ(replaceStrRegx("a(", "(", "-"), "a(");

    EXPECT_EQ(padString("FA", u'0', 4, true), "FA00");
    EXPECT_EQ(padString("FAFAF", u'0', 4, false), "FAFAF");
    EXPECT_EQ(padLeft("1", 4, "ab"), "aba1");
    EXPECT_EQ(padRight("1", 4, "ab"), "1aba");
    EXPECT_EQ(padRight("12345", 4, "ab"), "12345");
    EXPECT_EQ(padLeft("1", 4, ""), "1");
}

} // namespace brivant
