#include "obd/whole_answer.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

TEST(whole_answer, on_can) {
    const std::pair<const char*, bool> rows[] = {
        {"03410D3C", true},
        {"03410D3C00000000", true}, // padded
        {"03410D", false},
        {"03410D3", false},
        {"03410<3C", false},
        {"", false},
        {"03410D3C 03410D3C", true}, // given twice
        {"1014490201314731 214A433534343452 2237323532333637", true},
        {"1014490201314731 214A433534343452 22373235", false},
        {"1014490201314731 214A433534 2237323532333637", false}, // a cut frame in the middle
        {"1014490201314731 2237323532333637", false},
        {"1014490201314731 2237323532333637 214A433534343452", false},
        {"1014490201314731", false},
        {"2003414243444546 2147484950515253", false}, // the first frame of a long answer is missing
        {"1105490201314731 214A433534343452", false}, // of 261 bytes
        {"10144902 214A433534343452 2237323532333637", false},
        {"100A430433010420 2104300300", true}, // ends with what it has
    };
    for (const auto& [bodies, is_whole] : rows)
        EXPECT_EQ(is_whole_can_answer(QString(bodies).split(' ')), is_whole) << bodies;
    EXPECT_EQ(digits_received({"1010460105101212", "2112121212121212", "2312121212121212"}), 26);
    EXPECT_EQ(digits_received({"1010460105101212", "21121212", "2212121212121212"}), 18);
}

TEST(whole_answer, of_more_than_sixteen_frames) {
    QStringList bodies{"1076620000000000"}; // 118 bytes
    QString reply = "076\r0:620000000000\r";
    for (int i = 1; i <= 16; ++i) {
        const QString digit = QString::number(i % 16, 16).toUpper();
        bodies += '2' + digit + QString(14, '0');
        reply += digit + ':' + QString(14, '0') + '\r';
    }
    EXPECT_TRUE(is_whole_can_answer(bodies));
    EXPECT_EQ(whole_data_without_headers(reply, "62").size(), 2 * 118);
}

TEST(whole_answer, vin_of_the_older_protocols) {
    const QStringList whole{"49020100000031", "49020247314A43", "49020335343434", "49020452373235",
                            "49020532333637AB"};
    EXPECT_TRUE(is_whole_legacy_vin(whole));
    for (qsizetype lost = 0; lost < whole.size(); ++lost) {
        QStringList rest = whole;
        rest.removeAt(lost);
        EXPECT_FALSE(is_whole_legacy_vin(rest)) << lost;
        rest = whole;
        rest[lost].chop(4);
        EXPECT_FALSE(is_whole_legacy_vin(rest)) << lost;
    }
}

TEST(whole_answer, without_headers) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"62 10 2A B3 41\r", "62102A", "62102AB341"},
        {"#\r\r\n62 10 2A B3\r", "62102A", "62102AB3"},
        {"62 10 2A B<DATA ERROR\r", "62102A", ""},
        {"62 10 2A B\r", "62102A", ""},
        {"62 10 2B B3\r", "62102A", ""},
        {"7F 22 31\r", "62102A", ""},
        {"00A \r0: 62 F1 97 31 47 31 \r1: 4A 43 35 34 00 00 00 \r", "62F197", "62F1973147314A433534"},
        {"014 \r0: 62 F1 97 31 47 31 \r1: 4A 43 35 34 34 34 52 \r", "62F197", ""}, // one is missing
        {"014 \r0: 62 F1 97 31 47 31 \r2: 37 32 35 32 33 36 37 \r", "62F197", ""},
        {"0: 62 F1 97 31 47 31 \r", "62F197", ""}, // how long it is was lost
    };
    for (const auto& [reply, answer, data] : rows)
        EXPECT_EQ(whole_data_without_headers(reply, answer), data) << reply;
}
