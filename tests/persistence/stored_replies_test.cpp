#include "persistence/stored_marks.h"
#include "persistence/stored_positions.h"
#include "persistence/stored_replies.h"

#include "tests/persistence/test_database.h"

namespace brivant {

namespace {

const QList<stored_reply> some{{"AT DPN", {"A6", 6, true}, 40},
                               {"03", {"7E8064302013302\r7E90343'--", 6, true}, 1234},
                               {"0100", {"~", -1, false}, 5'000'000'000}};

QString shown(const std::optional<QList<stored_reply>>& replies) {
    QString text = replies ? "" : "unsound";
    if (replies) {
        for (const stored_reply& one : *replies)
            text += QString("%1>%2 %3 %4 %5; ")
                        .arg(one.request, one.what_came.text)
                        .arg(one.what_came.protocol)
                        .arg(one.what_came.headers_shown)
                        .arg(one.milliseconds);
    }
    return text;
}

} // namespace

TEST(stored_replies, come_back_as_they_were_and_go_with_their_log) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    EXPECT_EQ(t.tables(), "LOGGIES LOGGIES_DATA VEHICLES VEH_IMAGES");
    EXPECT_EQ(shown(replies_of(t.db, 1)), ""); // of an older version: there is not even the table
    EXPECT_EQ(t.db.problem(), "");
    for (int log = 1; log <= 3; ++log) {
        ASSERT_EQ(t.db.add_2_LOG_DB("DTC", 1, "Codes and flags"), log);
        ASSERT_TRUE(store_replies(t.db, log, some)) << t.db.problem().toStdString();
    }
    EXPECT_EQ(shown(replies_of(t.db, 2)), shown(some));
    EXPECT_FALSE(store_replies(t.db, 2, some)); // they are told once
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM BV_REPLIES"), "9");

    EXPECT_TRUE(t.db.delete_a_DB_log(2));
    t.outside("DELETE FROM LOGGIES WHERE LOG_ID=1"); // by another program
    EXPECT_EQ(t.column("SELECT DISTINCT LOG_ID FROM BV_REPLIES"), "3");
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM sqlite_master WHERE tbl_name='LOGGIES_DATA' AND type='index'"),
              "1");

    // What a later version keeps goes too, also in a file in which that had no place before.
    t.outside("DROP TRIGGER BV_FORGET_MARKS; DROP TABLE BV_MARKS; DROP TRIGGER BV_FORGET_POSITION; "
              "DROP TABLE BV_POSITIONS");
    ASSERT_TRUE(t.db.add_own_parts());
    const int marked = t.db.add_2_LOG_DB("Log", 1, "1 Sample points  ");
    ASSERT_TRUE(store_mark(t.db, marked, {1, "a"}) && store_mark(t.db, marked + 1, {1, "b"}));
    for (const int line : {0, 1}) {
        ASSERT_GT(t.db.append_2_LOG_DB("410D3C", "", line, marked), 0);
        ASSERT_TRUE(store_position(t.db, marked, line, {52.5, 13.25}) &&
                    store_position(t.db, marked + 1, line, {-52.5, -13.25, 34.5, 16.6, 22.1, 4.9, -800}));
    }
    EXPECT_TRUE(t.db.delete_a_DB_log(marked));
    EXPECT_EQ(t.column("SELECT TEXT FROM BV_MARKS"), "b");
    EXPECT_EQ(
        t.column("SELECT (LOG_ID - LINE_NUMBER) || ':' || LATITUDE || ALTITUDE || SPEED || TRACK || ERROR "
                 "|| OFFSET_MS FROM BV_POSITIONS"),
        QString("%1:-52.534.516.622.14.9-800.0 %2:-52.534.516.622.14.9-800.0").arg(marked + 1).arg(marked));

    // Nor does the program's own trigger run beside one that the file brings along.
    t.outside("CREATE TRIGGER foreign_one AFTER DELETE ON LOGGIES BEGIN DELETE FROM VEHICLES; END");
    EXPECT_TRUE(t.db.delete_a_DB_log(3));
    EXPECT_EQ(t.column("SELECT NAME FROM VEHICLES"), "Cur Veh.");
}

TEST(stored_replies, that_are_not_sound_are_neither_stored_nor_read) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB() && t.db.add_own_parts());
    EXPECT_FALSE(store_replies(t.db, 1, {{QString(2000, 'A'), {}, 0}}));
    EXPECT_FALSE(store_replies(t.db, 1, {{"03", {QString(20'000, '4'), 6, true}, 0}}));
    EXPECT_FALSE(store_replies(t.db, 1, QList<stored_reply>(5000)));
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM BV_REPLIES"), "0");
    const char* rows[] = {"1, '03', '43', 6, 1, 0",     // not from the first on
                          "0, '03', '43', 99, 1, 0",    // no such protocol
                          "0, '03', '43', 'six', 1, 0", // another type
                          "0, '03', '43', 6, 7, 0",     // neither shown nor not
                          "0, '03', '43', 6, 1, -5",    // before the start
                          "0, '03', hex(zeroblob(9000)), 6, 1, 0"};
    for (const QByteArray row : rows) {
        t.outside(
            "DELETE FROM BV_REPLIES; INSERT INTO BV_REPLIES (LOG_ID, SEQUENCE, REQUEST, REPLY, PROTOCOL, "
            "HEADERS_SHOWN, MILLISECONDS) VALUES (1, " +
            row + ")");
        EXPECT_EQ(shown(replies_of(t.db, 1)), "unsound") << row.constData();
    }
    ASSERT_TRUE(QFile::resize(t.db.path(), 3000));
    EXPECT_FALSE(replies_of(t.db, 1));
}

} // namespace brivant
