#include "obd/reply.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

constexpr int iso_9141 = 3;
constexpr int kwp = 5;
constexpr int can = 6;

reply with_headers(const char* text, int protocol) {
    return reply({text, protocol, true});
}
reply without_headers(const QString& text) {
    return reply({text, can, false});
}

ecu_said on_can(const char* bodies) {
    const QStringList frames = QString(bodies).split(' ');
    return {"7E8", frames, can, l_pullOBDFromSingleGroupedMsg(frames, can)};
}

} // namespace

TEST(reply, that_holds_nothing) {
    struct row {
        const char* text;
        bool is_none, no_data, refused;
    };
    const row rows[] = {
        {"~", true, false, false},
        {"NODATA", false, true, false},
        {"7E8037F0112\rNODATA", false, true, false},
        {"?", false, false, true},
        {"STOPPED?", false, false, true},
        {"?\r7E803410D3C", false, false, false}, // noise
        {"7E803410D3C", false, false, false},
        {"", false, false, false},
    };
    for (const row& r : rows) {
        const reply it = with_headers(r.text, can);
        EXPECT_EQ(it.is_none(), r.is_none) << r.text;
        EXPECT_EQ(it.no_data(), r.no_data) << r.text;
        EXPECT_EQ(it.refused_by_adapter(), r.refused) << r.text;
        EXPECT_EQ(it.holds_nothing(), r.is_none || r.no_data || r.refused) << r.text;
    }

    const reply given_up = reply::none({"7E8037F0112\r7E9024300", can, true});
    EXPECT_TRUE(given_up.is_none() && given_up.holds_nothing() && given_up.headers_shown());
    EXPECT_EQ(given_up.text() + given_up.lines().join(','), "~~");
    EXPECT_EQ(given_up.raw().text, "7E8037F0112\r7E9024300");
    EXPECT_TRUE(reply::none().is_none());
}

TEST(reply, says_what_each_ecu_said) {
    const reply two = with_headers("7E9037F010C\r7E804410C1AF800\r7EA037F0178", can);
    ASSERT_EQ(two.ecus().size(), 3);
    EXPECT_EQ(two.ecus()[0].data, "410C1AF800");
    EXPECT_EQ(two.engine(), &two.ecus()[0]);
    EXPECT_EQ(two.ecu("7E9"), &two.ecus()[1]);
    EXPECT_EQ(two.ecu("7E1"), nullptr);
    EXPECT_EQ(two.ecus()[0].refused(), std::nullopt);
    EXPECT_EQ(two.ecus()[1].refused(), (negative_response{0x01, 0x0C}));
    EXPECT_TRUE(two.ecus()[2].refused()->is_pending());
    reply copy;
    copy = two;
    EXPECT_EQ(&copy.ecus(), &two.ecus()) << "taken apart once";

    // On ISO 14230-4 a header tells the length of its message.
    const reply three = with_headers("83F1117F011215\r84F110410C1AF8E4", kwp);
    EXPECT_EQ(three.engine(), three.ecu("99F110"));
    EXPECT_EQ(three.ecu("83F111")->refused(), (negative_response{0x01, 0x12}));

    for (const reply& nobody : {with_headers("7E803410D3C", -1), with_headers("", can), reply()})
        EXPECT_TRUE(nobody.ecus().isEmpty() && !nobody.engine() && !nobody.ecu(""));
}

TEST(reply, is_whole_or_not) {
    using enum ecu_said::damage;
    const std::pair<const char*, ecu_said::damage> rows[] = {
        {"03410D3C", none},
        {"03410D3C00000000", none}, // padded
        {"03410D", cut},
        {"03410D3", no_hex},
        {"03410<3C", no_hex},
        {"", no_hex},
        {"03410D3C 03410D3C", none}, // given twice
        {"1014490201314731 214A433534343452 2237323532333637", none},
        {"1014490201314731 214A433534343452 22373235", frame_missing},
        {"1014490201314731 214A433534 2237323532333637", frame_missing}, // a cut frame in the middle
        {"1014490201314731 2237323532333637", frame_missing},
        {"1014490201314731 2237323532333637 214A433534343452", frame_missing},
        {"1014490201314731", frame_missing},
        {"2003414243444546 2147484950515253", frame_missing}, // the first frame
        {"1105490201314731 214A433534343452", frame_missing}, // of 261 bytes
        {"10144902 214A433534343452 2237323532333637", frame_missing},
        {"100A430433010420 2104300300", none}, // ends with what it has
    };
    for (const auto& [bodies, damage] : rows)
        EXPECT_EQ(on_can(bodies).what_is_wrong(), damage) << bodies;
    EXPECT_EQ(on_can("1010460105101212 2112121212121212 2312121212121212").digits_received(), 26);
    EXPECT_EQ(on_can("1010460105101212 21121212 2212121212121212").digits_received(), 18);
}

// 118 bytes: the sequence digit runs from 1 to F and begins again at 0. Each frame holds its own number.
TEST(reply, of_more_than_sixteen_frames) {
    QString headed = "7E9024100\r7E81076620000000000";
    QString plain = "076\r0:620000000000\r";
    QString expected = "620000000000";
    for (int i = 1; i <= 16; ++i) {
        const QString digit = QString::number(i % 16, 16).toUpper();
        const QString data = QString("%1").arg(i, 2, 10, QChar(u'0')).repeated(7);
        headed += "\r7E82" + digit + data;
        plain += digit + ':' + data + '\r';
        expected += data;
    }
    const reply long_one({headed, can, true});
    EXPECT_TRUE(long_one.ecus().first().is_whole());
    EXPECT_EQ(long_one.ecus().first().data, expected);
    EXPECT_EQ(without_headers(plain).data_without_headers("62"), expected);
}

// What is shown of an ECU's answer, and what is sampled of it.
TEST(reply, value_of_an_ecu) {
    struct row {
        const char* text;
        int protocol;
        const char* value;
        const char* of_first_line;
    };
    const row rows[] = {
        {"7E803410D3C00000000", can, "410D3C", "410D3C"},
        {"7E803410D", can, "N/A", ""},
        {"7E803410D3", can, "N/A", ""},
        {"7E803410D3C\r7E803410D4", can, "N/A", "410D3C"},
        {"7E8100A416401020304\r7E82105060708", can, "41640102030405060708", "41640102030405060708"},
        {"7E8100A416401020304", can, "N/A", "0A416401020304"},
        {"486B10410D3CA5", iso_9141, "410D3C", "410D3C"},
        {"486B10410D3CA", iso_9141, "410D3", ""},
        {"83F110410D3C06", kwp, "410D3C", "410D3C"},
        {"84F110410D3C06", kwp, "410D3C", ""}, // its header promises a byte more
    };
    for (const row& r : rows) {
        const reply said = with_headers(r.text, r.protocol);
        const ecu_said ecu = said.ecus().value(0);
        EXPECT_EQ(ecu.value(), r.value) << r.text;
        EXPECT_EQ(ecu.value_of_first_line(), r.of_first_line) << r.text;
    }
}

TEST(reply, without_headers) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"62102AB341", "62102A", "62102AB341"},
        {"#\r\r\n62102AB3", "62102A", "62102AB3"},
        {"62102AB<DATAERROR", "62102A", ""},
        {"62102AB", "62102A", ""},
        {"62102BB3", "62102A", ""},
        {"7F2231", "62102A", ""},
        {"00A\r0:62F197314731\r1:4A433534000000", "62F197", "62F1973147314A433534"},
        {"014\r0:62F197314731\r1:4A433534343452", "62F197", ""}, // one is missing
        {"014\r0:62F197314731\r2:37323532333637", "62F197", ""},
        {"0:62F197314731", "62F197", ""}, // how long it is was lost
    };
    for (const auto& [text, answer, data] : rows)
        EXPECT_EQ(without_headers(text).data_without_headers(answer), data) << text;
}

} // namespace brivant
