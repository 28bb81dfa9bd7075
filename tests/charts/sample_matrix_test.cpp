#include "charts/sample_matrix.h"

#include "base/shared_types.h"

#include <gtest/gtest.h>
#include <random>

namespace brivant {

namespace {

// The last two digits as a number; NaN for what is no number.
double last_byte(const QString& body) {
    bool ok = false;
    const int number = body.right(2).toInt(&ok, 16);
    return ok ? number : std::numeric_limits<double>::quiet_NaN();
}

QString reply(int number) {
    return QStringLiteral("410D%1").arg(number, 2, 16, QChar(u'0')).toUpper();
}

TEST(sample_matrix, keeps_bodies_as_they_came_and_missing_ones_apart) {
    sample_matrix matrix(last_byte);
    matrix.add_row();
    EXPECT_EQ(matrix.rows(), 0) << "nothing was started";
    matrix.start(3);
    EXPECT_EQ(matrix.rows(), 1);
    EXPECT_EQ(matrix.body(0, 2), "-1");

    const QStringList bodies{"410D00", "00000000000000", "410d3c", "41000102030405060708090A",
                             "7F0112", QString(),        "NODATA", "~",
                             "-1",     "4124FFFFFFFFFF"};
    for (const QString& body : bodies) {
        matrix.set(1, body);
        EXPECT_EQ(matrix.body(matrix.rows() - 1, 1), body);
        matrix.set_bytes(2, body.toUtf8());
        EXPECT_EQ(matrix.body(matrix.rows() - 1, 2), body);
        EXPECT_EQ(matrix.body(matrix.rows() - 1, 0), "-1");
        matrix.add_row();
    }
    EXPECT_EQ(matrix.value(2, 1), 0x3C);
    for (const qsizetype row : {6, 7, 8})
        EXPECT_TRUE(std::isnan(matrix.value(row, 1))) << row;
    matrix.set(3, reply(1));
    matrix.set(-1, reply(1));
    EXPECT_EQ(matrix.body(99, 1), "-1");
    EXPECT_TRUE(matrix.summary(7, 0, 10).empty());
}

TEST(sample_matrix, extremes_leave_out_the_first_row_and_follow_a_replaced_cell) {
    sample_matrix matrix(last_byte);
    matrix.start(1);
    matrix.set(0, reply(200));
    EXPECT_TRUE(matrix.extremes(0).empty());
    EXPECT_EQ(matrix.extremes_with_first(0).minimum, 200);
    matrix.add_row();
    EXPECT_TRUE(matrix.extremes(0).empty()) << "a row without a value";
    matrix.set(0, reply(90));
    matrix.set(0, reply(50));
    EXPECT_EQ(matrix.extremes(0).maximum, 50);
    matrix.add_row();
    matrix.set(0, reply(60));
    EXPECT_EQ(matrix.extremes(0).minimum, 50);
    EXPECT_EQ(matrix.extremes(0).maximum, 60);
    EXPECT_EQ(matrix.summary(0, 0, 3).maximum, 200);
    EXPECT_EQ(matrix.extremes_with_first(0).maximum, 200);
    matrix.start(1);
    EXPECT_TRUE(matrix.extremes(0).empty());
}

TEST(sample_matrix, a_summary_of_any_range_is_what_a_walk_over_it_finds) {
    std::mt19937 random(4);
    sample_matrix matrix(last_byte);
    matrix.start(2);
    constexpr int rows = 3 * 4096 + 128; // the last summary lacks the row that still grows
    for (int row = 0; row < rows; ++row) {
        if (row > 0)
            matrix.add_row();
        if (random() % 3 != 0)
            matrix.set(1, reply(static_cast<int>(random() % 256)));
    }
    const auto agree = [&matrix](qsizetype begin, qsizetype end) {
        series_summary walked;
        for (qsizetype row = begin; row < end; ++row)
            walked.append(matrix.value(row, 1));
        const series_summary sum = matrix.summary(1, begin, end);
        return walked.empty() ? sum.empty()
                              : sum.first == walked.first && sum.minimum == walked.minimum &&
                                    sum.maximum == walked.maximum && sum.last == walked.last;
    };
    EXPECT_TRUE(agree(0, rows));
    EXPECT_TRUE(agree(0, 0));
    for (int trial = 0; trial < 300; ++trial) {
        const qsizetype begin = static_cast<qsizetype>(random() % rows);
        const qsizetype end =
            begin + static_cast<qsizetype>(random() % static_cast<quint32>(rows - begin + 1));
        EXPECT_TRUE(agree(begin, end)) << begin << " to " << end;
    }
    EXPECT_TRUE(matrix.summary(0, 0, rows).empty());
}

TEST(sample_matrix, other_units_change_every_number) {
    double factor = 1;
    sample_matrix matrix([&factor](const QString& body) { return factor * last_byte(body); });
    matrix.start(1);
    for (int row = 0; row < 5000; ++row) {
        matrix.set(0, row == 4200 ? no_reply : reply(row % 100));
        matrix.add_row();
    }
    factor = -2;
    matrix.units_changed();
    EXPECT_EQ(matrix.value(4163, 0), -126);
    EXPECT_TRUE(std::isnan(matrix.value(4200, 0)));
    EXPECT_EQ(matrix.extremes(0).minimum, -198);
    EXPECT_EQ(matrix.summary(0, 0, 5000).maximum, 0);
    EXPECT_EQ(matrix.summary(0, 1, 10).maximum, -2);
}

TEST(sample_matrix, memory_is_bounded_by_dropping_the_oldest_rows) {
    constexpr qsizetype most = 1 << 20;
    sample_matrix matrix(last_byte, most);
    matrix.start(4);
    constexpr int sweeps = 40000;
    for (int sweep = 0; sweep < sweeps; ++sweep) {
        for (int column = 0; column < 4; ++column)
            matrix.set(column, reply(sweep == 1 ? 255 : sweep % 200));
        matrix.add_row();
    }
    EXPECT_LE(matrix.bytes(), most);
    EXPECT_GT(matrix.dropped(), 0);
    EXPECT_EQ(matrix.dropped() + matrix.rows(), sweeps + 1);
    EXPECT_EQ(matrix.body(matrix.rows() - 2, 3), reply((sweeps - 1) % 200));
    EXPECT_EQ(matrix.value(0, 0), static_cast<double>(matrix.dropped() % 200));
    EXPECT_EQ(matrix.extremes(2).maximum, 255) << "of a row that was dropped";

    // Ever new garbage does not take the room either, and what is kept stays as it was.
    sample_matrix noisy([](const QString&) { return 7.0; });
    noisy.start(1);
    for (int sweep = 0; sweep < 20000; ++sweep) {
        noisy.set(0, QStringLiteral("BUSERROR%1").arg(sweep).repeated(8));
        noisy.add_row();
    }
    EXPECT_LE(noisy.bytes(), 2 * most);
    EXPECT_EQ(noisy.body(0, 0), QStringLiteral("BUSERROR0").repeated(8));
    EXPECT_EQ(noisy.body(19999, 0), no_reply);
    EXPECT_EQ(noisy.value(19999, 0), 7);
}

TEST(sample_times, rows_lie_in_the_order_in_which_they_began) {
    sample_matrix matrix(last_byte, 1 << 20);
    const sample_times& times = matrix.times();
    matrix.start(2);
    matrix.add_row();
    EXPECT_FALSE(times.are_known());
    EXPECT_EQ(times.begin_of(1), 1) << "without times, its number";

    matrix.start(2);
    for (const double begin : {0.0, 100.5, 90.0, 400.0}) { // the third is damaged
        matrix.begins(begin);
        matrix.came(1, begin + 30.25);
        matrix.add_row();
    }
    EXPECT_EQ(times.begin_of(2), 100.5);
    EXPECT_EQ(times.moment(3, 1), 430.25);
    EXPECT_EQ(times.moment(3, 0), 430.25) << "one without a time of its own came with the last one";
    EXPECT_EQ(times.rows_before(100.5), 1);
    EXPECT_EQ(times.row_at(100.5), 2);
    EXPECT_EQ(times.row_at(-1), -1);
    matrix.begins(700);
    matrix.came(0, 710);
    matrix.begins(900); // the sweep that 710 belonged to was dropped
    EXPECT_EQ(times.end_of(4), 900);
    matrix.spread_times(1, 3, 300.5);
    EXPECT_EQ(times.begin_of(2), 200.5);

    for (int sweep = 1; sweep <= 40000; ++sweep) {
        matrix.add_row();
        matrix.begins(1000 + 10 * sweep);
    }
    ASSERT_GT(matrix.dropped(), 0);
    EXPECT_GE(matrix.rows(), matrix.most_rows());
    EXPECT_EQ(times.rows(), matrix.rows());
    EXPECT_EQ(times.begin_of(matrix.rows() - 1), 401000);
    EXPECT_EQ(times.row_at(301005), matrix.rows() - 1 - 10000);
}

TEST(sample_matrix, a_million_sweeps_of_four_pids_take_less_than_150_megabytes) {
    sample_matrix matrix(last_byte);
    matrix.start(4);
    for (int sweep = 1; sweep < 8192; ++sweep)
        matrix.add_row();
    EXPECT_LT(static_cast<double>(matrix.bytes()) / 8192 * 1000000, 150e6);
}

} // namespace

} // namespace brivant
