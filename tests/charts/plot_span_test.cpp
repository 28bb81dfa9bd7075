#include "charts/plot_span.h"
#include "charts/series_averages.h"

#include <gtest/gtest.h>
#include <limits>

namespace brivant {

TEST(plot_span, keeps_its_place_when_zoomed_and_never_leaves_the_run) {
    const plot_span all = plot_span::all_of(10'000, 20);
    const plot_span zoomed = all.with_count(1000, 0.75);
    EXPECT_EQ(zoomed, (plot_span{10'000, 6750, 1000, 20})); // 7500 stays at three quarters
    EXPECT_EQ(zoomed.with_count(10'000, 0.1), all);
    EXPECT_EQ(zoomed.with_count(1, 0).count, 20);
    EXPECT_EQ(zoomed.with_count(99'999, 0.5), all);
    EXPECT_EQ(zoomed.moved(99'999).end(), 10'000);
    EXPECT_EQ(zoomed.moved(std::numeric_limits<qsizetype>::min()).first, 0);
    EXPECT_EQ(zoomed.moved(std::numeric_limits<qsizetype>::max()).end(), 10'000);
    EXPECT_EQ(zoomed.showing(10).first, 10);
    EXPECT_EQ(zoomed.showing(9000).end(), 9001);
    EXPECT_EQ(zoomed.showing(7000), zoomed);

    for (const qsizetype length : {0, 1, 5, 20}) {
        const plot_span small = plot_span::all_of(length, 20);
        EXPECT_EQ(small.with_count(2, 0.5), small);
        EXPECT_EQ(small.slider(), 1);
        EXPECT_EQ(small.count_at(0), length);
    }
    for (const double place : {0.0, 0.3, 1.0})
        EXPECT_NEAR(all.with_count(all.count_at(place), 0).slider(), place, 0.01);
}

TEST(series_averages, are_those_of_the_rows_that_have_a_value) {
    sample_matrix matrix([](const QString& body) { return body.toDouble(); });
    series_averages averages;
    matrix.start(2);
    averages.start(2);
    constexpr int rows = 1001;
    for (int row = 0; row < rows; ++row) {
        if (row > 0) {
            averages.count_rows(matrix);
            matrix.add_row();
        }
        if (row % 2 == 0)
            matrix.set(0, QString::number(row));
    }
    averages.count_rows(matrix);
    EXPECT_DOUBLE_EQ(averages.average(matrix, 0, 0, rows), 500);
    EXPECT_DOUBLE_EQ(averages.average(matrix, 0, 0, rows - 1), 499);
    EXPECT_DOUBLE_EQ(averages.average(matrix, 0, 63, 67), 65); // 64 and 66
    EXPECT_DOUBLE_EQ(averages.average(matrix, 0, 998, 1000), 998);
    EXPECT_TRUE(std::isnan(averages.average(matrix, 0, 999, 1000)));
    EXPECT_TRUE(std::isnan(averages.average(matrix, 1, 0, rows)));
    EXPECT_TRUE(std::isnan(averages.average(matrix, 2, 0, rows)));
}

} // namespace brivant
