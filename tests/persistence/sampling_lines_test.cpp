#include "persistence/recovery.h"
#include "persistence/row_cursor.h"
#include "persistence/stored_logs.h"
#include "tests/persistence/test_database.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

int flushes = 0;

} // namespace

// SQLite finds this one first.
extern "C" int fdatasync(int file) {
    ++flushes;
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

namespace brivant {

// The lines of a sampling run: how they get to the disk, and who else may use the database meanwhile.

namespace {

const QString count_of_lines = QStringLiteral("SELECT count(*) FROM LOGGIES_DATA");

struct run_database : test_database {
    int log = 0;

    run_database() {
        EXPECT_TRUE(db.init_DB());
        log = db.add_2_LOG_DB("Log", 1, "sample points");
    }
    int append(int line) {
        int id = 0; // as a run does it
        db.change([&](sqlite_connection&) {
            id = db.append_2_LOG_DB("410D3C,410C1AF8", "", line, log);
            return id > 0;
        });
        return id;
    }
    qint64 size_of_wal() const { return QFileInfo(db.path() + "-wal").size(); }
    // Neither a companion file nor a mark in the header that asks for one.
    bool is_one_plain_file() const { return !QFileInfo::exists(db.path() + "-wal") && bytes().at(18) == 1; }
};

} // namespace

TEST(sampling_lines, the_file_is_plain_again_behind_the_run_and_the_log_ahead_stays_small) {
    run_database t;
    t.db.begin_lines();
    qint64 largest = 0;
    for (int line = 0; line < 140; ++line) {
        ASSERT_GT(t.append(line), 0) << t.db.problem().toStdString();
        largest = std::max(largest, t.size_of_wal());
    }
    EXPECT_GT(largest, 0);
    EXPECT_LT(largest, 70 * 4200); // pages of 64 lines
    EXPECT_TRUE(finish_sampling_log(t.db, t.log, "140 Sample points  "));
    t.db.end_lines();
    EXPECT_TRUE(t.is_one_plain_file());
    EXPECT_EQ(t.column(count_of_lines), "140");
    EXPECT_EQ(t.column("SELECT INFO FROM LOGGIES"), "140 Sample points  ");
}

TEST(sampling_lines, the_next_start_finishes_a_run_that_was_cut_short) {
    run_database t; // two lines and a gap; another run without a line
    t.db.begin_lines();
    ASSERT_GT(t.append(0), 0);
    ASSERT_GT(t.db.append_2_LOG_DB("~,~", "", 1, t.log), 0);
    ASSERT_GT(t.append(2), 0);
    t.db.add_2_LOG_DB("Log", 1, "sample points");
    database next_start(t.folder.path());
    EXPECT_EQ(put_in_order(next_start), "") << "it goes on";
    EXPECT_EQ(t.column("SELECT DISTINCT INFO FROM LOGGIES"), "sample points");
    t.db.end_lines();
    EXPECT_EQ(put_in_order(next_start),
              "Put in order after a sudden end: 1 run finished, 1 log of which only a "
              "part was left removed.");
    EXPECT_EQ(t.column("SELECT LOG_ID || ':' || INFO FROM LOGGIES"), "1:2 Sample points  ");
    EXPECT_EQ(put_in_order(next_start), "");
}

// An export that began before the run, or in its middle, reads on and holds up no line.
TEST(sampling_lines, a_long_reading_neither_waits_nor_is_waited_for) {
    run_database t;
    for (int line = 0; line < 120; ++line)
        ASSERT_GT(t.append(line), 0);
    const QString query = "SELECT LINE_NUMBER FROM LOGGIES_DATA";
    auto before = std::make_unique<row_cursor>(t.db.path(), query);
    ASSERT_TRUE(before->next());

    t.db.begin_lines();
    ASSERT_GT(t.append(120), 0);
    auto in_the_middle = std::make_unique<row_cursor>(t.db.path(), query);
    ASSERT_TRUE(in_the_middle->next());
    QElapsedTimer clock;
    clock.start();
    for (int line = 121; line < 200; ++line)
        ASSERT_GT(t.append(line), 0) << t.db.problem().toStdString();
    EXPECT_LT(clock.elapsed(), 79 * 100); // a lock is waited for 250 ms
    t.db.end_lines();

    int rows = 1;
    while (before->next())
        ++rows;
    EXPECT_EQ(rows, 120);
    before.reset();
    EXPECT_FALSE(t.is_one_plain_file());
    in_the_middle.reset();
    EXPECT_TRUE(t.is_one_plain_file());
    EXPECT_EQ(t.column(count_of_lines), "200");
}

TEST(sampling_lines, another_program_that_ends_the_log_ahead_costs_no_line) {
    run_database t;
    t.db.begin_lines();
    ASSERT_GT(t.append(0), 0);
    database other(t.folder.path());
    ASSERT_TRUE(other.init_DB()); // starts meanwhile
    ASSERT_GT(t.append(1), 0);
    EXPECT_FALSE(t.is_one_plain_file());
    t.db.end_lines();
    EXPECT_TRUE(t.is_one_plain_file());
    EXPECT_EQ(t.column(count_of_lines), "2");
}

TEST(sampling_lines, each_is_one_flush_of_the_disk) {
    run_database t;
    t.db.begin_lines();
    for (int line = 0; line < 3; ++line)
        ASSERT_GT(t.append(line), 0);
    const int before = flushes;
    for (int line = 3; line < 23; ++line)
        ASSERT_GT(t.append(line), 0);
    EXPECT_EQ(flushes - before, 20);
    t.db.end_lines();
}

TEST(sampling_lines, go_into_the_file_that_stands_at_the_path) {
    run_database t;
    t.db.begin_lines();
    ASSERT_GT(t.append(0), 0);
    ASSERT_TRUE(QFile::rename(t.db.path(), t.db.path() + ".moved"));
    EXPECT_LE(t.append(1), 0) << "nothing is stored where nobody would find it";
    EXPECT_FALSE(QFileInfo::exists(t.db.path()));
    ASSERT_TRUE(QFile::rename(t.db.path() + ".moved", t.db.path()));
    EXPECT_GT(t.append(2), 0) << t.db.problem().toStdString();
    t.db.end_lines();
    EXPECT_EQ(t.column(count_of_lines), "2");
}

} // namespace brivant
