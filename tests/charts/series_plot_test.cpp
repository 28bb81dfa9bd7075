#include "charts/time_plot.h"

#include "tests/charts/chart_bench.h"

#include <QPainterPath>
#include <gtest/gtest.h>
#include <random>

namespace brivant {

namespace {

constexpr QRect plot(10, 5, 200, 100);

TEST(scale_point, maps_to_whole_pixels_from_the_lower_left_corner) {
    EXPECT_EQ(scale_point(0, 0, 10, 5, 200, 100, 8, 0, 50, 0), QPoint(10, 5));
    EXPECT_EQ(scale_point(4, 25, 10, 5, 200, 100, 8, 0, 50, 0), QPoint(110, 55));
    EXPECT_EQ(scale_point(1, 10, 10, 5, 100, 100, 3, 0, 30, 0), QPoint(43, 38)) << "cut, not rounded";
    EXPECT_EQ(scale_point(12, 50, 10, 5, 200, 100, 20, 10, 50, 0), QPoint(50, 105));
    EXPECT_EQ(scale_point(4, 7, 10, 5, 200, 100, 8, 0, 7, 7), QPoint(110, 0)) << "a flat series";
    EXPECT_LT(std::abs(scale_point(4, 1e300, 10, 5, 200, 100, 8, 0, 1, 0).y()), 40000);
}

TEST(series_points, bridge_what_is_missing_and_begin_at_the_first_value) {
    chart_bench bench;
    bench.drive({-1, 10, -1, -1, 40, -1});
    EXPECT_EQ(series_points(bench.matrix, 0, {0, 0, 60, 50}, {0, 6, 0, 50}), (QPolygon{{10, 10}, {40, 40}}));
    bench.drive({-1, -1});
    EXPECT_TRUE(series_points(bench.matrix, 0, plot, {0, 2, 0, 50}).isEmpty());
    EXPECT_TRUE(series_points(bench.matrix, 0, plot, {2, 2, 0, 50}).isEmpty());
}

TEST(series_points, do_not_belong_together_over_a_gap) {
    sample_matrix matrix([](const QString& body) { return body.mid(4).toInt(nullptr, 16); });
    matrix.start(2);
    for (const char* cells :
         {"410D0A ~", "~ 410C0A", "410D0A ~", "~ ~", "410D14 410C0A", "-1 -1", "-1 -1", "410D14 ~"}) {
        matrix.set(0, QString(cells).section(' ', 0, 0));
        matrix.set(1, QString(cells).section(' ', 1));
        matrix.add_row();
    }
    EXPECT_EQ(matrix.gaps(0, 3), 0);
    EXPECT_EQ(matrix.gaps(3, 6), 2);
    EXPECT_EQ(matrix.gaps(7, 9), 0) << "the last row is not over";
    const plot_range range{0, 8, 0, 20};
    const QRect place(0, 0, 80, 20);
    const QList<int> gaps = gap_places(matrix, place, range);
    EXPECT_EQ(gaps, (QList<int>{30, 50, 60}));
    EXPECT_EQ(parts_between(series_points(matrix, 0, place, range), gaps),
              (QList<QPolygon>{{{0, 10}, {20, 10}}, {{40, 20}}, {{70, 20}}}));
    // Many rows a pixel: at the place of the gap.
    EXPECT_EQ(gap_places(matrix, {0, 0, 2, 20}, range), (QList<int>{0, 1}));
    EXPECT_EQ(parts_between({{0, 1}, {1, 2}, {1, 3}}, {1}), (QList<QPolygon>{{{0, 1}}, {{1, 2}, {1, 3}}}));
}

// A run of one PID: when each sweep began, and its speed 20 ms later; -1 for none.
void drive_at(sample_matrix& matrix, const QList<std::pair<double, int>>& sweeps) {
    matrix.start(1);
    for (const auto& [begin, speed] : sweeps) {
        matrix.begins(begin);
        if (speed >= 0) {
            matrix.came(0, begin + 20);
            matrix.set(0, QStringLiteral("410D%1").arg(speed, 2, 16, QChar(u'0')).toUpper());
        }
        matrix.add_row();
    }
    matrix.begins(sweeps.constLast().first + 100);
}

TEST(time_plot, places_values_at_their_moments_and_breaks_where_none_came) {
    chart_bench bench;
    sample_matrix& matrix = bench.matrix;
    // A row without a value, and then sweeps that nobody stored.
    drive_at(
        matrix,
        {{0, 10}, {100, 20}, {200, 30}, {300, -1}, {500, 40}, {600, 50}, {700, 60}, {3000, 70}, {3100, 80}});
    const QRect place(0, 0, 320, 100);
    plot_range range = range_between(matrix, 0, 3200);
    range.maximum = 100;
    const QList<plot_gap> gaps = time_gaps(matrix, place, range);
    EXPECT_EQ(gaps, (QList<plot_gap>{{22, 50}, {72, 300}}));
    EXPECT_EQ(parts_between(series_points(matrix, 0, place, range), ends_of(gaps)),
              (QList<QPolygon>{
                  {{2, 10}, {12, 20}, {22, 30}}, {{52, 40}, {62, 50}, {72, 60}}, {{302, 70}, {312, 80}}}));
    // Narrower than a pixel, a gap still divides.
    EXPECT_EQ(time_gaps(matrix, {0, 0, 4, 100}, range), (QList<plot_gap>{{0, 3}}));
    // Within a run: the rows beside it are there, for the lines that come in and go out.
    const plot_range part = range_between(matrix, 550, 650);
    EXPECT_EQ(part.first, 4);
    EXPECT_EQ(part.rows, 7);

    EXPECT_TRUE(std::isnan(value_at(matrix, 0, 19.9)));
    EXPECT_EQ(value_at(matrix, 0, 20), 10);
    EXPECT_EQ(value_at(matrix, 0, 119), 10);
    EXPECT_TRUE(std::isnan(value_at(matrix, 0, 510))) << "what came before a gap is over";
    EXPECT_TRUE(std::isnan(value_at(matrix, 0, 2990)));
    EXPECT_EQ(value_at(matrix, 0, 3200), 80);
}

// Every row one step: the area below it, then the line.
void draw_row_by_row(QPainter& painter, const sample_matrix& matrix, const plot_range& range,
                     const QColor& colour) {
    QColor filling = colour;
    filling.setAlphaF(0.2);
    QPolygon points;
    for (qsizetype row = range.first; row < range.rows; ++row)
        if (!std::isnan(matrix.value(row, 0)))
            points.append(scale_point(row, matrix.value(row, 0), plot.x(), plot.y(), plot.width(),
                                      plot.height(), static_cast<double>(range.rows),
                                      static_cast<double>(range.first), range.maximum, range.minimum));
    for (qsizetype at = 1; at < points.size(); ++at) {
        const QPoint from = points[at - 1], to = points[at];
        painter.setPen(Qt::NoPen);
        painter.setBrush(filling);
        painter.drawPolygon(QPolygon({from, to, {to.x(), plot.y()}, {from.x(), plot.y()}}));
        painter.setPen(QPen(colour, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawLine(from, to);
    }
}

TEST(series_points, draw_the_picture_that_all_rows_would_draw) {
    std::mt19937 random(7);
    for (const int rows : {2, 3, 20, 150, 199, 200, 201, 650, 5000}) {
        QList<int> speeds;
        int speed = 100;
        for (int row = 0; row < rows; ++row) {
            speed = std::clamp(speed + static_cast<int>(random() % 31) - 15, 0, 200);
            speeds.append(random() % 7 == 0 ? -1 : speed);
        }
        chart_bench bench;
        bench.drive(speeds);
        for (const qsizetype first : {0, rows / 3}) {
            const plot_range range{first, rows, 0, 200};
            QImage plain(220, 110, QImage::Format_RGB32), decimated = plain;
            plain.fill(Qt::black);
            decimated.fill(Qt::black);
            QPainter plain_painter(&plain), painter(&decimated);
            plain_painter.setRenderHint(QPainter::Antialiasing);
            painter.setRenderHint(QPainter::Antialiasing);
            draw_row_by_row(plain_painter, bench.matrix, range, Qt::green);
            draw_series(painter, series_points(bench.matrix, 0, plot, range), plot.y(), Qt::green, 1.8);
            double sum = 0;
            int worst = 0;
            for (int y = 0; y < plain.height(); ++y)
                for (int x = 0; x < plain.width(); ++x) {
                    const int off = std::abs(qGreen(plain.pixel(x, y)) - qGreen(decimated.pixel(x, y)));
                    worst = std::max(worst, off);
                    sum += off;
                }
            // What many lines over each other add at their soft edges.
            EXPECT_LT(worst, 110) << rows << " rows from " << first;
            EXPECT_LT(sum / (plain.width() * plain.height()), 2) << rows << " rows from " << first;
        }
    }
}

TEST(series_points, are_bounded_by_the_width_of_the_picture) {
    sample_matrix matrix([](const QString& body) { return body.right(2).toInt(nullptr, 16); });
    matrix.start(1);
    std::mt19937 random(5);
    const auto drawn = [&matrix](qsizetype last) {
        const qsizetype first = last < 0 ? 0 : matrix.rows() - last;
        return series_points(matrix, 0, plot, {first, matrix.rows(), 0, 255}).size();
    };
    for (int row = 0; row < 300000; ++row) {
        matrix.set(0, QStringLiteral("410D%1").arg(random() % 256, 2, 16, QChar(u'0')).toUpper());
        matrix.add_row();
        if (row == 999 || row == 29999 || row == 299999) {
            EXPECT_LE(drawn(-1), 4 * plot.width());
            EXPECT_LE(drawn(20), 20);
        }
    }
    EXPECT_GT(drawn(-1), 3 * plot.width()) << "noise has its extremes in every pixel column";
}

} // namespace

} // namespace brivant
