#include "tests/persistence/test_database.h"

namespace brivant {

TEST(database, first_and_second_start) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    EXPECT_TRUE(t.db.is_new());
    EXPECT_EQ(t.tables(), "LOGGIES LOGGIES_DATA VEHICLES VEH_IMAGES");
    const auto vehicles = t.db.retrieve_from_DB("SELECT * FROM VEHICLES ");
    ASSERT_EQ(vehicles.size(), 1);
    ASSERT_EQ(vehicles[0].size(), 6);
    EXPECT_EQ(vehicles[0].first(4), (QStringList{"1", "Cur Veh.", "2012", "3.0 lts."}));
    EXPECT_EQ(vehicles[0][5], ""); // NULL
    EXPECT_FALSE(t.log().contains("rror"));

    ASSERT_TRUE(t.db.init_DB());
    EXPECT_FALSE(t.db.is_new());
    EXPECT_EQ(t.tables(), "LOGGIES LOGGIES_DATA P1_CODES VEHICLES VEH_IMAGES");
    EXPECT_EQ(t.log(), "Error/warning adding loggies.xtra_info:duplicate column name: XTRA_INFO\n");
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM VEHICLES"), "1");

    const QByteArray settled = t.bytes();
    ASSERT_TRUE(t.db.init_DB());
    EXPECT_EQ(t.bytes(), settled);
}

TEST(database, older_states_gain_what_they_lack_and_keep_their_rows) {
    const char* without[] = {"ALTER TABLE LOGGIES_DATA DROP COLUMN DATA2",
                             "ALTER TABLE VEHICLES DROP COLUMN XTRA_INFO", "DROP TABLE VEH_IMAGES",
                             "DROP TABLE P1_CODES"};
    for (unsigned lacking = 0; lacking < 16; ++lacking) {
        test_database t;
        ASSERT_TRUE(t.db.init_DB() && t.db.init_DB());
        const int log = t.db.add_2_LOG_DB("Log", 1, "sample points");
        ASSERT_GT(t.db.append_2_LOG_DB("410D3C", "", 0, log), 0);
        for (unsigned part = 0; part < 4; ++part) {
            if (lacking & (1u << part))
                t.outside(without[part]);
        }
        SCOPED_TRACE(lacking);
        EXPECT_TRUE(t.db.init_DB()) << t.db.problem().toStdString();
        EXPECT_EQ(t.tables(), "LOGGIES LOGGIES_DATA P1_CODES VEHICLES VEH_IMAGES");
        EXPECT_EQ(t.column("SELECT DATA FROM LOGGIES_DATA"), "410D3C");
        // Columns are addressed by position: those that came later stand last.
        EXPECT_TRUE(t.db.update_tableInDB2({"XTRA_INFO"}, {"[]"}, "VEHICLES", "VEH_ID", "1"));
        EXPECT_EQ(t.db.retrieve_from_DB("SELECT * FROM VEHICLES")[0].value(5), "[]");
        ASSERT_GT(t.db.append_2_LOG_DB("410D3D", "N 52", 1, log), 0);
        EXPECT_EQ(t.db.retrieve_from_DB("SELECT * FROM LOGGIES_DATA")[1].value(4), "N 52");
    }
}

TEST(database, logs_are_stored_read_and_deleted) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    EXPECT_EQ(t.db.pull_rawData_fromDB("7", true), "-1");
    const int log = t.db.add_2_LOG_DB("DTC", 1, "Codes and flags");
    const int other = t.db.add_2_LOG_DB("O2 Test", 1, "Test results for O2 monitoring ");
    ASSERT_EQ(log, 1);
    ASSERT_EQ(other, 2);
    EXPECT_EQ(t.db.append_2_LOG_DB("P0133 100% of the driver''s side \xC2\xB0 %1 %@", "", 0, log), 1);
    EXPECT_EQ(t.db.append_2_LOG_DB("kept", "", 0, other), 2);
    t.outside("UPDATE LOGGIES_DATA SET time_stamp='2020-01-01 00:00:00'");
    EXPECT_EQ(t.db.append_2_LOG_DB("newer", "", 1, log), 3);

    EXPECT_EQ(t.db.pull_rawData_fromDB("1", true), "-1newer\nP0133 100% of the driver's side \u00B0 %1 %@\n");
    EXPECT_EQ(t.db.pull_rawData_fromDB("2", false), "-1kept");
    EXPECT_EQ(t.db.pull_rawData_fromDB("1 OR 1", false), "-1");
    EXPECT_EQ(t.db.retrieve_from_DB("SELECT INFO FROM LOGGIES WHERE LOG_ID=2")[0][0],
              "Test results for O2 monitoring ");

    EXPECT_TRUE(
        t.db.retrieve_from_DB("DELETE FROM LOGGIES_DATA WHERE LINE_NUMBER=1 RETURNING DATA").isEmpty());
    EXPECT_TRUE(t.log().endsWith("total count of deleted notes 1\n"));
    EXPECT_TRUE(t.db.retrieve_from_DB("SELECT 'DELETE' FROM LOGGIES").isEmpty());
    EXPECT_TRUE(t.db.delete_a_DB_log(log));
    EXPECT_EQ(t.column("SELECT LOG_ID FROM LOGGIES_DATA UNION ALL SELECT LOG_ID FROM LOGGIES"), "2 2");
}

TEST(database, a_lone_quote_is_refused_where_values_are_spliced_and_kept_where_they_are_bound) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    EXPECT_EQ(t.db.add_update_DB({"O'Brien", "2012", "3.0"}, "VEHICLES"), -1);
    EXPECT_TRUE(t.db.problem().contains("O'Brien") && t.db.problem().contains("apostrophe"));
    EXPECT_TRUE(t.log().contains("add_update_DB::sqlite3_prepare_v2:: "));
    EXPECT_EQ(t.db.add_2_LOG_DB("DTC", 1, "driver's"), 0);
    EXPECT_EQ(t.db.append_2_LOG_DB("driver's", "", 0, 1), 0);
    EXPECT_EQ(t.db.add_update_DB({"Van", "2001"}, "VEHICLES"), -1); // a value is missing

    EXPECT_EQ(t.db.add_update_DB({"Van", "2001", "2.4"}, "VEHICLES"), 2);
    EXPECT_EQ(t.db.problem(), "");
    // Values that would make another valid statement, one that changes or deletes every row.
    EXPECT_EQ(t.db.add_update_DB({"x' --", "", ""}, "VEHICLES", "1"), -1);
    EXPECT_EQ(t.db.add_update_DB({"x','',''); DELETE FROM VEHICLES; --", "", ""}, "VEHICLES"), -1);
    EXPECT_EQ(t.db.add_update_DB({"x", "", ""}, "VEHICLES", "1 OR 1"), -1);
    t.db.retrieve_from_DB("SELECT * FROM VEHICLES; DELETE FROM VEHICLES");
    t.db.retrieve_from_DB("SELECT * FROM VEHICLES; DROP TABLE VEHICLES");
    EXPECT_EQ(t.column("SELECT NAME FROM VEHICLES ORDER BY VEH_ID"), "Cur Veh. Van");

    EXPECT_EQ(t.db.add_update_DB({"Bus", "1999", "2.5"}, "VEHICLES", "2"), 1);
    EXPECT_TRUE(t.db.update_tableInDB2({"NAME", "MODEL_YEAR"}, {"O'Brien", "1"}, "VEHICLES", "VEH_ID", "1"));
    EXPECT_EQ(t.db.retrieve_from_DB("SELECT NAME, MODEL_YEAR, ENG_VOL FROM VEHICLES"),
              (QList<QStringList>{{"O'Brien", "1", "3.0 lts."}, {"Bus", "1999", "2.5"}}));
    EXPECT_FALSE(t.db.update_tableInDB2({"NAME"}, {}, "VEHICLES", "VEH_ID", "1"));
    EXPECT_FALSE(t.db.update_tableInDB2({"COLOUR"}, {"red"}, "VEHICLES", "VEH_ID", "1"));
    EXPECT_TRUE(t.log().contains("update_tableInDB2::sqlite3_prepare_v2 err:: no such column: COLOUR"));
}

TEST(database, rows_are_stepped_through_without_being_collected) {
    test_database t;
    ASSERT_TRUE(t.db.init_DB());
    t.outside("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 99999) "
              "INSERT INTO LOGGIES_DATA (LOG_ID, DATA, LINE_NUMBER) SELECT 1, '410D3C', i FROM n");
    int rows = 0;
    EXPECT_TRUE(
        t.db.for_each_row("SELECT * FROM LOGGIES_DATA WHERE LOG_ID=1", [&rows](const QStringList& row) {
            EXPECT_EQ(row.value(2).toInt(), rows);
            return ++rows < 1000;
        }));
    EXPECT_EQ(rows, 1000);
    // An endless query ends with the reader, and closes the file: the next store is not locked out.
    EXPECT_TRUE(
        t.db.for_each_row("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n",
                          [&rows](const QStringList&) { return --rows > 0; }));
    EXPECT_GT(t.db.add_2_LOG_DB("Log", 1, ""), 0);

    EXPECT_FALSE(t.db.for_each_row("DROP TABLE LOGGIES_DATA", [](const QStringList&) { return true; }));
    EXPECT_FALSE(t.db.for_each_row("SELECT NONE FROM LOGGIES", [](const QStringList&) { return true; }));
    EXPECT_TRUE(t.log().endsWith("retrieve_from_DB::sqlite3_prepare_v2:: no such column: NONE\n"));
    EXPECT_EQ(t.column("SELECT COUNT(*) FROM LOGGIES_DATA"), "100000");
}

} // namespace brivant
