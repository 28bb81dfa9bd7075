#include "logs/stored_figures.h"
#include "logs/stored_series.h"

#include "base/console_log.h"
#include "persistence/sqlite_connection.h"
#include "tests/support/print_qt.h"
#include "tests/support/temporary_profile.h"
#include "toolkit/mac_toolies.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct sampled_run {
    temporary_profile profile;
    adapter_facts adapter;
    car_state car;
    mac_toolies toolies{adapter, car, profile.defaults, profile.db};
    sample_matrix matrix{[this](const QString& body) { return toolies.get_OBDVal(body); }};
    log_header log;

    explicit sampled_run(const QStringList& lines) {
        silence_console_log();
        EXPECT_TRUE(profile.db.init_DB() && profile.db.add_own_parts());
        const int id =
            profile.db.add_2_LOG_DB("Log", 1, QStringLiteral("%1 Sample points ").arg(lines.size()));
        const int other = profile.db.add_2_LOG_DB("Log", 1, "");
        for (int line = 0; line < lines.size(); ++line) {
            profile.db.append_2_LOG_DB(lines.at(line), "", line, id);
            profile.db.append_2_LOG_DB("410D01", "", line, other);
        }
        log = *log_with_id(profile.db, id);
    }
    // How many values the first column has, or why that is not known.
    QString values() {
        stored_figures read(toolies, log);
        while (read.step(2))
            ;
        return read.figures() ? QString::number(read.figures()->columns().value(0).samples) : read.problem();
    }
    stored_series read(qsizetype most_rows = stored_series::all_rows) {
        stored_series series(profile.db, log, matrix, most_rows);
        while (series.step(2))
            ;
        return series;
    }
};

} // namespace

TEST(stored_series, reads_what_the_run_stored) {
    sampled_run run({"-1,410C1AF8,~,", "410D3C,410C1B00,NODATA,410", "410D3D,-1,~,,410D01", "410D3E", "",
                     // Other PIDs, as a run over a new link once had: one has a column elsewhere.
                     "41055A,410D3F"});
    const stored_series series = run.read();
    EXPECT_EQ(series.problem(), "");
    EXPECT_FALSE(series.is_cut());
    EXPECT_EQ(series.rows(), 6);
    EXPECT_EQ(series.announced(), 6);
    EXPECT_EQ(series.pids(), QStringList({"0D", "0C", "", ""}));
    EXPECT_EQ(run.matrix.rows(), 6);
    EXPECT_EQ(run.matrix.body(5, 0), "410D3F");
    EXPECT_EQ(run.matrix.body(5, 1), "-1");
    EXPECT_EQ(run.matrix.columns(), 4);

    EXPECT_TRUE(std::isnan(run.matrix.value(0, 0)));
    EXPECT_DOUBLE_EQ(run.matrix.value(0, 1), run.toolies.get_OBDVal("410C1AF8"));
    EXPECT_EQ(run.matrix.body(3, 0), "410D3E");
    for (const auto& [row, column] : {std::pair(0, 2), {1, 2}, {1, 3}, {2, 1}, {3, 1}, {4, 0}})
        EXPECT_EQ(run.matrix.body(row, column), "-1") << row << " " << column;
    const double mean = (run.toolies.get_OBDVal("410D3C") + run.toolies.get_OBDVal("410D3D")) / 2;
    EXPECT_DOUBLE_EQ(series.averages().average(run.matrix, 0, 0, 3), mean);
    EXPECT_NEAR(static_cast<double>(series.started_utc_ms().value_or(0)),
                static_cast<double>(QDateTime::currentMSecsSinceEpoch()), 60'000);
}

TEST(stored_series, has_the_moments_or_the_seconds_of_its_lines) {
    sampled_run run(QStringList(5, "410D3C,410C1AF8"));
    const int id = run.log.id;
    ASSERT_TRUE(store_run_start(run.profile.db, id, 1'700'000'000'250));
    for (const int line : {0, 1, 3}) // one was damaged
        ASSERT_TRUE(store_moment(run.profile.db, id, line, {500.5 + 100 * line, {20.25, qQNaN()}}));
    const stored_series timed = run.read();
    EXPECT_EQ(timed.started_utc_ms(), 1'700'000'000'250);
    EXPECT_TRUE(timed.has_moments());
    EXPECT_DOUBLE_EQ(run.matrix.times().moment(0, 0), 520.75);
    EXPECT_DOUBLE_EQ(run.matrix.times().begin_of(2), 620.75) << "the end of the line before";
    EXPECT_DOUBLE_EQ(run.matrix.times().begin_of(3), 800.5);

    sampled_run old(QStringList(6, "410D3C"));
    const char* const stamps[]{"10:00:00", "10:00:02", "10:00:02", "10:00:01", "10:00:02", "10:00:05"};
    for (int line = 0; line < 6; ++line)
        old.profile.db.change([&](sqlite_connection& file) {
            return file.execute(
                QStringLiteral("UPDATE LOGGIES_DATA SET time_stamp='2020-01-01 %1' WHERE LINE_NUMBER=%2")
                    .arg(stamps[line])
                    .arg(line));
        });
    const stored_series seconds = old.read();
    EXPECT_FALSE(seconds.has_moments());
    EXPECT_EQ(seconds.started_utc_ms(), 1'577'872'800'000);
    const QList<double> begins{0, 2000, 2250, 2500, 2750, 5000}; // evenly in their second, also one set back
    for (int row = 0; row < 6; ++row)
        EXPECT_DOUBLE_EQ(old.matrix.times().begin_of(row), begins[row]) << row;
}

TEST(stored_series, is_bounded_and_tells_what_is_wrong) {
    sampled_run run(QStringList(10, "410D3C"));
    const stored_series cut = run.read(4);
    EXPECT_TRUE(cut.is_cut());
    EXPECT_EQ(run.matrix.rows(), 4);
    EXPECT_FALSE(run.read(10).is_cut());
    EXPECT_EQ(run.values(), "10");

    sampled_run wide({QStringList(200, "410D3C").join(',')});
    EXPECT_EQ(wide.read().columns_left_out(), 136);
    EXPECT_EQ(wide.matrix.columns(), stored_series::most_columns);

    sampled_run none({});
    EXPECT_EQ(none.read().rows(), 0);
    EXPECT_EQ(none.matrix.rows(), 0);

    run.profile.db.change( // made by a newer version: not to be written
        [](sqlite_connection& file) { return file.execute("PRAGMA user_version=9"); });
    EXPECT_FALSE(run.profile.db.init_DB());
    EXPECT_EQ(run.read().rows(), 10);

    QFile file(run.profile.db.path());
    ASSERT_TRUE(file.resize(5000));
    EXPECT_NE(run.read().problem(), "");
    EXPECT_TRUE(run.values().startsWith("The log cannot be read: ")) << run.values().toStdString();
}

} // namespace brivant
