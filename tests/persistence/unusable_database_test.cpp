#include "persistence/database_problem.h"
#include "tests/persistence/test_database.h"
#include "tests/support/other_program.h"

#include <QDir>
#include <QFileInfo>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

// Every way to store is refused, says so, and changes no byte.
void expect_nothing_is_stored(test_database& t, const QString& reason) {
    const QByteArray before = t.bytes();
    const QStringList car{"a", "b", "c"};
    const std::function<bool()> stores[] = {
        [&t] { return t.db.init_DB(); },
        [&t] { return t.db.add_2_LOG_DB("DTC", 1, "") > 0; },
        [&t] { return t.db.append_2_LOG_DB("x", "", 0, 1) > 0; },
        [&] { return t.db.add_update_DB(car, "VEHICLES") != -1; },
        [&] { return t.db.add_update_DB(car, "VEHICLES", "1") != -1; },
        [&t] { return t.db.update_tableInDB2({"NAME"}, {"a"}, "VEHICLES", "VEH_ID", "1"); },
        [&t] { return t.db.do_update_vehicle_image("1", QImage(2, 2, QImage::Format_RGB32), "-666") > 0; },
        [&t] { return t.db.delete_a_DB_log(1); },
        [&t] { return t.db.delete_from_DB("DELETE FROM VEHICLES"); },
    };
    for (const auto& store : stores) {
        EXPECT_FALSE(store());
        EXPECT_TRUE(t.db.problem().contains(t.db.path())) << t.db.problem().toStdString();
        EXPECT_TRUE(t.db.problem().contains(reason)) << t.db.problem().toStdString();
    }
    EXPECT_EQ(t.bytes(), before);
}

// Root may write anything, so the rights of a file are tried out as nobody.
class as_nobody {
public:
    as_nobody() : was_root(geteuid() == 0), in_force(!was_root || seteuid(65534) == 0) {}
    ~as_nobody() {
        if (was_root && seteuid(0) != 0)
            abort();
    }
    const bool was_root;
    const bool in_force;
};

} // namespace

TEST(unusable_database, the_disk_is_full_or_fails) {
    for (const auto& [code, why] :
         {std::pair(SQLITE_FULL, "no room left"), std::pair(SQLITE_IOERR, "disk failed")})
        EXPECT_TRUE(problem_sentence("/a/b.db", {code, {}}).contains(why)) << why;
}

TEST(unusable_database, damaged) {
    test_database t;
    t.write(QByteArray(5000, 'x'));
    expect_nothing_is_stored(t, "damaged");
    EXPECT_TRUE(t.db.retrieve_from_DB("SELECT * FROM VEHICLES").isEmpty());
    EXPECT_EQ(t.db.pull_rawData_fromDB("1", true), "-1");
    EXPECT_TRUE(t.db.pull_veh_image("VEH_ID=1").isNull());
}

TEST(unusable_database, row_numbers_beyond_what_ids_hold) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    t.outside("INSERT INTO LOGGIES (LOG_ID, VEH_ID) VALUES (3000000000, 1)");
    EXPECT_EQ(t.db.add_2_LOG_DB("DTC", 1, "Codes and flags"), -1);
    EXPECT_TRUE(t.db.problem().contains("damaged"));
}

TEST(unusable_database, newer_can_still_be_read) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    t.outside("PRAGMA user_version=1; DROP TABLE VEH_IMAGES");
    expect_nothing_is_stored(t, "newer version");
    EXPECT_EQ(t.column("SELECT NAME FROM VEHICLES"), "Cur Veh.");
}

TEST(unusable_database, locked_until_the_other_program_has_closed_it) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    auto other = std::make_unique<other_program>(t.db.path());
    other->runs("BEGIN EXCLUSIVE");
    expect_nothing_is_stored(t, "locked by another program");
    EXPECT_TRUE(t.db.retrieve_from_DB("SELECT * FROM VEHICLES").isEmpty());
    other.reset();
    EXPECT_TRUE(t.db.init_DB());
    EXPECT_EQ(t.db.problem(), "");
    EXPECT_EQ(t.db.add_2_LOG_DB("DTC", 1, ""), 1);
}

TEST(unusable_database, no_file_stands_at_the_path) {
    test_database t;
    ASSERT_TRUE(QDir().mkdir(t.db.path()));
    expect_nothing_is_stored(t, "folder");
    ASSERT_TRUE(QDir().rmdir(t.db.path()));
    ASSERT_EQ(mkfifo(t.db.path().toUtf8().constData(), 0600), 0);
    EXPECT_FALSE(t.db.init_DB());
    ASSERT_TRUE(QFile::remove(t.db.path()));

    // Only init_DB() makes the file: an empty one would pass for a database later.
    EXPECT_EQ(t.db.add_2_LOG_DB("DTC", 1, ""), -1);
    EXPECT_FALSE(QFileInfo::exists(t.db.path()));
    t.write("");
    EXPECT_TRUE(t.db.init_DB());
    EXPECT_TRUE(t.db.is_new());

    database vanished(t.folder.filePath("nowhere"));
    EXPECT_FALSE(vanished.init_DB());
    EXPECT_TRUE(vanished.problem().contains("cannot be opened"));
}

TEST(unusable_database, read_only_and_unreadable) {
    const std::tuple<mode_t, mode_t, const char*> cases[] = {
        // folder, file
        {0755, 0444, "read-only"},
        {0755, 0000, "cannot be opened"},
        {0555, 0666, "folder"},    // no journal can be made
        {0555, 0444, "read-only"}, // a copy made during a run, with its log ahead
    };
    for (const auto& [folder, file, reason] : cases) {
        test_database t;
        ASSERT_TRUE(t.db.init_DB() && t.db.init_DB()); // nothing is left to migrate
        if (folder == 0555 && file == 0444)
            t.outside("PRAGMA journal_mode=WAL");
        ASSERT_EQ(chmod(t.db.path().toUtf8().constData(), file), 0);
        ASSERT_EQ(chmod(t.folder.path().toUtf8().constData(), folder), 0);
        const as_nobody nobody;
        if (!nobody.in_force)
            GTEST_SKIP() << "root may write every file here, and cannot become another user";
        if (folder == 0755) // a start that has nothing to change needs no journal
            expect_nothing_is_stored(t, reason);
        EXPECT_EQ(t.db.add_2_LOG_DB("DTC", 1, ""), -1);
        EXPECT_TRUE(t.db.problem().contains(reason)) << t.db.problem().toStdString();
        EXPECT_EQ(t.column("SELECT NAME FROM VEHICLES"), file ? "Cur Veh." : "");
    }
}

TEST(unusable_database, a_failed_migration_leaves_the_file_as_it_was) {
    test_database t;
    t.outside("CREATE TABLE VEHICLES (VEH_ID INTEGER PRIMARY KEY, NAME TEXT); INSERT INTO VEHICLES VALUES "
              "(1, 'mine')");
    const QByteArray before = t.bytes();
    EXPECT_FALSE(t.db.init_DB()); // no LOGGIES_DATA to add a column to
    EXPECT_TRUE(t.db.problem().contains("LOGGIES_DATA")) << t.db.problem().toStdString();
    EXPECT_TRUE(t.log().contains("Error:no such table: LOGGIES_DATA"));
    EXPECT_EQ(t.bytes(), before);
    EXPECT_EQ(t.tables(), "VEHICLES");
}

TEST(unusable_database, what_a_file_brings_along_does_not_run) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    t.outside("CREATE TRIGGER t AFTER INSERT ON LOGGIES BEGIN DELETE FROM VEHICLES; END;"
              "INSERT INTO LOGGIES_DATA (LOG_ID, DATA) VALUES (1, zeroblob(65 * 1024 * 1024))");
    EXPECT_EQ(t.db.add_2_LOG_DB("DTC", 1, ""), 1);
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM VEHICLES"), "1");
    EXPECT_EQ(t.db.pull_rawData_fromDB("1", true), "-1");
    EXPECT_TRUE(t.db.problem().contains("too large")) << t.db.problem().toStdString();
}

TEST(unusable_database, tables_that_would_run_something_are_not_asked) {
    const QByteArray endless = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i "
                               "AS VEH_ID, x'00' AS PICY FROM n WHERE i < 0";
    const QByteArray slow = "(replace(hex(zeroblob(9000000)), '0', hex(zeroblob(9))) LIKE '%1%1%1%2')";
    const QByteArray made[] = {
        "DROP TABLE VEH_IMAGES; CREATE VIEW VEH_IMAGES AS " + endless,
        "DROP TABLE VEHICLES; CREATE VIRTUAL TABLE VEHICLES USING fts5(VEH_ID, NAME)",
        "DROP TABLE VEHICLES; CREATE TABLE vehicles (VEH_ID INTEGER PRIMARY KEY, NAME AS " + slow + ")",
        "ALTER TABLE VEHICLES ADD COLUMN x AS " + slow,
        "DROP TABLE LOGGIES; CREATE TABLE LOGGIES (LOG_ID INTEGER PRIMARY KEY, INFO CHECK " + slow + ")",
        "DROP TABLE LOGGIES; CREATE TABLE LOGGIES (LOG_ID INTEGER PRIMARY KEY, INFO DEFAULT " + slow + ")",
        "CREATE INDEX x ON LOGGIES (" + slow + ")",
        "CREATE INDEX x ON LOGGIES_DATA (DATA) WHERE DATA LIKE '%a%'",
        "CREATE TABLE BV_LATER (x, y AS (x))",
    };
    for (const QByteArray& sql : made) {
        SCOPED_TRACE(sql.constData());
        test_database t;
        ASSERT_TRUE(t.db.init_DB());
        t.outside(sql);
        expect_nothing_is_stored(t, "not a database of this program");
        EXPECT_EQ(t.column("SELECT COUNT(*) FROM P1_CODES"), "");
    }
}

TEST(unusable_database, a_step_without_an_end_is_broken_off) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    for (const db_access access : {db_access::reading, db_access::writing}) {
        sqlite_connection connection(t.db.path(), access);
        connection.let_steps_take(20);
        const auto numbers =
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) ");
        EXPECT_FALSE(connection.execute(numbers + "SELECT COUNT(*) FROM n"));
        EXPECT_EQ(connection.failure().code, SQLITE_INTERRUPT);
        EXPECT_TRUE(problem_sentence("/a/b.db", connection.failure()).contains("too long to answer"));
        // Many steps may take longer.
        sqlite_statement rows(connection, numbers + "SELECT i FROM n");
        for (int i = 0; i < 400'000; ++i)
            ASSERT_EQ(rows.step(), sqlite_statement::stepped::row);
    }
}

} // namespace brivant
