#include "logs/stored_series.h"

#include "base/console_log.h"
#include "persistence/sqlite_connection.h"
#include "tests/support/print_qt.h"
#include "tests/support/temporary_profile.h"
#include "toolkit/mac_toolies.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct stored_run {
    temporary_profile profile;
    adapter_facts adapter;
    car_state car;
    mac_toolies toolies{adapter, car, profile.defaults, profile.db};
    sample_matrix matrix{[this](const QString& body) { return toolies.get_OBDVal(body); }};
    log_header log;

    explicit stored_run(const QStringList& lines) {
        silence_console_log();
        profile.db.init_DB();
        const int id =
            profile.db.add_2_LOG_DB("Log", 1, QStringLiteral("%1 Sample points ").arg(lines.size()));
        const int other = profile.db.add_2_LOG_DB("Log", 1, "");
        for (int line = 0; line < lines.size(); ++line) {
            profile.db.append_2_LOG_DB(lines.at(line), "", line, id);
            profile.db.append_2_LOG_DB("410D01", "", line, other);
        }
        log = *log_with_id(profile.db, id);
    }
    stored_series read(qsizetype most_rows = stored_series::most_cells) {
        stored_series series(profile.db, log, matrix, most_rows);
        while (series.step(2))
            ;
        return series;
    }
};

} // namespace

TEST(stored_series, reads_what_the_run_stored) {
    stored_run run({"-1,410C1AF8,~,", "410D3C,410C1B00,NODATA,410", "410D3D,-1,~,,410D01", "410D3E", "",
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
    for (const qint64 time : series.times())
        EXPECT_NEAR(static_cast<double>(time), static_cast<double>(QDateTime::currentSecsSinceEpoch()), 60);
}

TEST(stored_series, is_bounded_and_tells_what_is_wrong) {
    stored_run run(QStringList(10, "410D3C"));
    const stored_series cut = run.read(4);
    EXPECT_TRUE(cut.is_cut());
    EXPECT_EQ(run.matrix.rows(), 4);
    EXPECT_FALSE(run.read(10).is_cut());

    stored_run wide({QStringList(200, "410D3C").join(',')});
    EXPECT_EQ(wide.read().columns_left_out(), 136);
    EXPECT_EQ(wide.matrix.columns(), stored_series::most_columns);

    stored_run none({});
    EXPECT_EQ(none.read().rows(), 0);
    EXPECT_EQ(none.matrix.rows(), 0);

    run.profile.db.change( // made by a newer version: not to be written
        [](sqlite_connection& file) { return file.execute("PRAGMA user_version=9"); });
    EXPECT_FALSE(run.profile.db.init_DB());
    EXPECT_EQ(run.read().rows(), 10);

    QFile file(run.profile.db.path());
    ASSERT_TRUE(file.resize(5000));
    EXPECT_NE(run.read().problem(), "");
}

} // namespace brivant
