#include "diagnostics/session_log.h"

#include "operations/operation_code.h"
#include "tests/support/other_program.h"
#include "tests/support/print_qt.h"
#include "tests/support/temporary_profile.h"
#include "tests/support/test_file.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct log_bench : temporary_profile {
    session_log log{paths, db};

    log_bench() { EXPECT_TRUE(db.init_DB()); }

    QStringList session_files() const {
        return QDir(paths.application_folder + "/loggies").entryList(QDir::Files);
    }
    QString session_text() const { return QString::fromUtf8(bytes_of(log.cur_log_file_name())); }
    // Every row of a query, its columns joined by "|".
    QStringList rows(const QString& sql) {
        QStringList texts;
        for (const QStringList& row : db.retrieve_from_DB(sql))
            texts += row.join('|');
        return texts;
    }
    QStringList headers() { return rows("SELECT LOG_ID, VEH_ID, LOG_TYPE, INFO FROM LOGGIES"); }
    QStringList chunks() { return rows("SELECT LOG_ID, LINE_NUMBER, DATA FROM LOGGIES_DATA"); }

    // From now on the database refuses the chunk with this line number.
    void refuse_line(int number) {
        other_program(db.path()).runs(
            "DROP TABLE LOGGIES_DATA; CREATE TABLE LOGGIES_DATA (LOG_ID INTEGER, DATA TEXT, LINE_NUMBER "
            "INTEGER CHECK (LINE_NUMBER <> " +
            QByteArray::number(number) + "), time_stamp DATETIME, DATA2 TEXT)");
    }
};

const diagnostic_report misfire{"Misfire", "EWMA is an average over driving cycles", "the driver's 'rows'\n",
                                "|A2_0B~3.000000 'counts'"};

} // namespace

TEST(session_log, writes_nothing_with_logging_off) {
    log_bench t;
    t.log.work_out_log_file(op_misfire, false, true);
    t.log.append_to_log("text");
    EXPECT_EQ(t.log.store(misfire, {}, 1), "");
    EXPECT_FALSE(t.log.is_on());
    EXPECT_EQ(t.session_files() + t.headers() + t.chunks(), QStringList());
    EXPECT_FALSE(QDir(t.paths.application_folder + "/loggies").exists());

    // Off again after it was on
    t.log.work_out_log_file(op_misfire, true, true);
    t.log.close();
    t.log.append_to_log("text");
    EXPECT_EQ(t.log.store(misfire, {}, 1), "");
    EXPECT_EQ(t.session_files() + t.headers() + t.chunks(), QStringList());
}

TEST(session_log, a_report_in_the_file_and_in_the_database) {
    log_bench t;
    t.log.work_out_log_file(op_misfire, true, true);
    t.log.append_to_log("------Misfire read------ \n");
    t.log.append_to_log(QString::fromUtf8("0.5 \xC2\xB0"
                                          "C"));
    EXPECT_EQ(t.log.store(misfire, {}, 3), "");
    t.log.close();
    ASSERT_EQ(t.session_files().size(), 1);
    EXPECT_TRUE(t.session_files()[0].startsWith("misfire_") && t.session_files()[0].endsWith(".txt"));
    EXPECT_EQ(t.session_text(), QString::fromUtf8("------Misfire read------ \n0.5 \xC2\xB0"
                                                  "Cthe driver's 'rows'\n"));
    // Doubled on the way into the statement, and single again when read.
    EXPECT_EQ(t.headers(), QStringList("1|3|Misfire|EWMA is an average over driving cycles"));
    EXPECT_EQ(t.chunks(), (QStringList{"1|0|the driver's 'rows'\n", "1|1||A2_0B~3.000000 'counts'"}));

    t.log.work_out_log_file(op_read_codes, true, true);
    EXPECT_EQ(t.log.store({"DTC", "Codes and flags", "''", ""}, {}, 3), "");
    t.log.close();
    EXPECT_EQ(t.chunks().mid(2), QStringList("2|0|''")); // no second chunk without raw records
    EXPECT_EQ(t.session_files().size(), 2);
}

TEST(session_log, a_file_that_cannot_be_written_is_left_out) {
    log_bench t;
    const QString in_the_way = t.paths.application_folder + "/loggies";
    put_file(in_the_way);
    t.log.work_out_log_file(op_mode6, true, false);
    t.log.append_to_log("text");
    EXPECT_TRUE(t.log.is_on());
    EXPECT_EQ(t.log.store({"Mode6", "results", "text", ""}, {}, 1), "");
    EXPECT_EQ(bytes_of(in_the_way), "");
    EXPECT_EQ(t.chunks(), QStringList("1|0|text"));
}

TEST(session_log, a_log_is_stored_whole_or_not_at_all) {
    for (const int refused : {0, 1}) {
        log_bench t;
        t.refuse_line(refused);
        t.log.work_out_log_file(op_misfire, true, true);
        EXPECT_NE(t.log.store(misfire, {}, 1), "");
        EXPECT_EQ(t.headers() + t.chunks(), QStringList());
        EXPECT_EQ(t.session_text(), misfire.text);
    }

    log_bench locked;
    auto other = std::make_unique<other_program>(locked.db.path());
    other->runs("BEGIN EXCLUSIVE");
    locked.log.work_out_log_file(op_misfire, true, true);
    EXPECT_TRUE(locked.log.store(misfire, {}, 1).contains("locked by another program"));
    EXPECT_EQ(locked.session_text(), misfire.text);
    other.reset();
    EXPECT_EQ(locked.headers(), QStringList());
}

} // namespace brivant
