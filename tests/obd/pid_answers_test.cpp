#include "obd/pid_answers.h"

#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

// What a reply on CAN with headers says of these PIDs, "0C=410C1AF8 ...", a bar between messages.
QString said(const QString& lines, const QStringList& asked) {
    const reply what_came({lines, 6, true});
    QStringList messages;
    for (const ecu_said& ecu : what_came.ecus())
        for (const QString& message : whole_messages(ecu)) {
            const auto answers = answers_in(message, asked);
            QStringList texts{ecu.header};
            const QMap<QString, QString> none;
            for (const auto& [pid, body] : (answers ? *answers : none).asKeyValueRange())
                texts += pid + '=' + body;
            messages += answers ? texts.join(' ') : ecu.header + " odd";
        }
    return messages.join(" | ");
}

} // namespace

TEST(pid_answers, are_told_apart_in_any_order) {
    const QStringList asked{"0C", "0D", "05", "11"};
    EXPECT_EQ(said("7E8064"
                   "10C1AF80D3C\r",
                   asked),
              "7E8 0C=410C1AF8 0D=410D3C");
    EXPECT_EQ(said("7E806410D3C0C1AF8\r", asked), "7E8 0C=410C1AF8 0D=410D3C");
    EXPECT_EQ(said("7E80441"
                   "0C1AF8555555\r7E9034105"
                   "7B\r",
                   asked),
              "7E8 0C=410C1AF8 | 7E9 05=41057B");
    // Ten bytes in two frames, filled up.
    EXPECT_EQ(said("7E8100A410C1AF80D3C\r7E821057B1180"
                   "000000\r",
                   asked),
              "7E8 05=41057B 0C=410C1AF8 0D=410D3C 11=411180");
}

TEST(pid_answers, of_what_is_not_whole_nothing_is_taken) {
    const QStringList asked{"0C", "0D", "05"};
    for (const char* odd : {
             "7E806410C1AF80D\r",                // cut, and the control byte says so
             "7E805410C1AF80D\r",                // data are short
             "7E806410C1AF80F3C\r",              // not asked
             "7E805410D3C0D3D\r",                // twice
             "7E803410D3C\r7E803410D3D\r|",      // two messages: see below
             "7E8100A410C1AF80D3C\r",            // a frame is missing
             "7E8100A410C1AF80D3C\r7E822057B\r", // the wrong one
             "7E8037F0112\r",
             "7E806410C1A_80D3C\r",
         }) {
        const QString told = said(QString(odd).remove('|'), asked);
        if (QString(odd).endsWith('|'))
            EXPECT_EQ(told, "7E8 0D=410D3C | 7E8 0D=410D3D"); // the caller drops a PID that comes twice
        else
            EXPECT_TRUE(told.isEmpty() || told == "7E8 odd") << odd << ": " << told.toStdString();
    }
    // A late frame of another message does not spoil the one that is whole.
    EXPECT_EQ(said("7E803410D3C\r7E8230102030405\r", asked), "7E8 0D=410D3C");
}

} // namespace brivant
