#include "charts/drawChartyItem.h"

#include "charts/axis_values.h"
#include "charts/series_plot.h"
#include "charts/tile_grid.h"
#include "charts/time_axis.h"
#include "tests/charts/chart_bench.h"

#include <gtest/gtest.h>

namespace brivant {

namespace {

struct drawn_chart : chart_bench {
    drawChartyItem item{toolies};

    explicit drawn_chart(const QStringList& pids = {"0D"}, double ratio = 1) {
        item.initWitdim({600, 300}, "chart", ratio);
        item.use_this_pids(pids);
    }
    const QImage& draw() {
        const chart_labels labels = item.work_out_labels(matrix);
        item.draw_grid(labels, "title");
        item.plot_array_list(matrix, labels);
        return item.imageRepresentation();
    }
};

// Soft edges aside.
bool is_nearly(const QColor& colour, int column) {
    const QColor wanted = series_colour(column);
    return std::abs(colour.red() - wanted.red()) + std::abs(colour.green() - wanted.green()) +
               std::abs(colour.blue() - wanted.blue()) <
           60;
}

// Pixels of the plot that are the series' own colour.
int coloured(const QImage& picture, const QRectF& plot, int column) {
    int count = 0;
    for (int y = 42; y < picture.height(); ++y)
        for (int x = static_cast<int>(plot.left()); x < static_cast<int>(plot.right()); ++x)
            count += is_nearly(picture.pixelColor(x, y), column) ? 1 : 0;
    return count;
}

TEST(plot_up_to, draws_the_sweeps_before_a_row_alone) {
    drawn_chart chart;
    QList<int> speeds(200, 10);
    speeds += QList<int>(200, 90);
    chart.drive(speeds);
    chart.item.setNumberPointsToPlot(100);
    chart.item.plot_up_to(150);
    chart.draw();
    const double low = chart.item.last_value();
    chart.item.plot_up_to(350);
    chart.draw();
    EXPECT_GT(chart.item.last_value(), low);
    chart.item.plot_up_to(99'999);
    const QImage beyond = chart.draw();
    chart.item.plot_up_to(-1);
    EXPECT_EQ(beyond, chart.draw());
    chart.item.plot_up_to(0);
    EXPECT_EQ(coloured(chart.draw(), chart.item.drawingSizes(), 0), 0);
}

TEST(work_out_labels, follow_the_values_from_the_second_row_on) {
    drawn_chart two({"0C|7E8", "0D|7E8"});
    two.matrix.start(2);
    const chart_labels labels = two.item.work_out_labels(two.matrix);
    ASSERT_EQ(labels.size(), 2);
    const chart_label& rpm = labels[0]; // the middle half of the PID's range
    EXPECT_EQ(rpm.name + ' ' + rpm.minimum + ' ' + rpm.maximum + ' ' + rpm.unit,
              "Engine RPM 4095.937500 12287.812500 RPM");

    drawn_chart chart;
    const auto ends = [&chart](const QList<int>& speeds) {
        chart.drive(speeds);
        const chart_label label = chart.item.work_out_labels(chart.matrix).constFirst();
        return std::pair(label.maximum, label.minimum);
    };
    using texts = std::pair<QString, QString>;
    EXPECT_EQ(ends({50, -1}), texts("0.000000", "255.000000")) << "the wrong way round without a value";
    EXPECT_EQ(ends({250, 60}), texts("60.000000", "60.000000"));
    EXPECT_EQ(ends({250, 60, -1, 90, 20, -1}), texts("90.000000", "20.000000"));
}

TEST(drawChartyItem, plots_the_last_sweeps_that_it_is_told_to) {
    drawn_chart chart;
    chart.drive({20, 60, 20});
    const int its_pixels = coloured(chart.draw(), chart.item.drawingSizes(), 0);
    chart.drive({10, 40, 20, 60, 20});
    chart.item.setNumberPointsToPlot(-1);
    const QImage all = chart.draw();
    chart.item.setNumberPointsToPlot(20);
    EXPECT_EQ(chart.draw(), all) << "more than there are";
    chart.item.setNumberPointsToPlot(3);
    const QImage three = chart.draw();
    EXPECT_NE(three, all);
    EXPECT_EQ(coloured(three, chart.item.drawingSizes(), 0), its_pixels) << "the last three and no other";
    chart.item.setNumberPointsToPlot(2);
    const QImage two = chart.draw();
    chart.item.setNumberPointsToPlot(0);
    EXPECT_EQ(chart.draw(), two);
    EXPECT_EQ(chart.item.last_value(), 20);
}

TEST(drawChartyItem, maps_time_where_it_is_told_to) {
    drawn_chart chart;
    const auto drive = [&chart](double last) {
        chart.matrix.start(1);
        for (int sweep = 0; sweep <= 20; ++sweep) {
            chart.matrix.begins(sweep < 20 ? 100 * sweep : last);
            chart.matrix.set(0, "410D32");
            chart.matrix.add_row();
        }
        chart.matrix.begins(last);
    };
    drive(2000);
    const QImage by_sweeps = chart.draw();
    chart.item.map_time(true);
    const QImage even = chart.draw();
    EXPECT_NE(even, by_sweeps) << "times in the place of sweep numbers";
    const int whole_line = coloured(even, chart.item.drawingSizes(), 0);
    drive(20'000);
    EXPECT_LT(coloured(chart.draw(), chart.item.drawingSizes(), 0), whole_line / 4) << "most of it is a gap";
    chart.item.map_time(false);
    EXPECT_EQ(chart.draw(), by_sweeps);

    chart.item.map_time(true);
    chart.item.plot_between(0, 2000);
    EXPECT_GT(coloured(chart.draw(), chart.item.drawingSizes(), 0), whole_line / 2);
    const auto dots = chart.item.dots_at(1000, chart.matrix, chart.item.work_out_labels(chart.matrix));
    ASSERT_EQ(dots.size(), 1);
    EXPECT_EQ(dots[0].place, chart.item.plot_area().center()) << "50 between 40 and 60";
    const double middle = chart.item.plot_area().width() / 2;
    EXPECT_EQ(chart.item.x_of(1000, chart.matrix), middle);
    EXPECT_EQ(chart.item.moment_at(middle, chart.matrix), 1000);
    EXPECT_FALSE(chart.item.moment_at(-1, chart.matrix) || chart.item.x_of(2001, chart.matrix));
    EXPECT_TRUE(chart.item.values_at(1000, chart.matrix, chart.item.work_out_labels(chart.matrix))
                    .startsWith("0:01.0   50.0"));
}

TEST(drawChartyItem, draws_nothing_without_values_and_a_standing_car_on_the_baseline) {
    drawn_chart chart;
    chart.draw();
    chart.drive({-1, -1, -1});
    EXPECT_EQ(coloured(chart.draw(), chart.item.drawingSizes(), 0), 0);
    EXPECT_TRUE(std::isnan(chart.item.last_value()));
    chart.drive({50, -1}); // whose range is the wrong way round
    EXPECT_EQ(coloured(chart.draw(), chart.item.drawingSizes(), 0), 0);

    chart.drive({0, 0, 0, 0});
    const QImage flat = chart.draw();
    EXPECT_GT(coloured(flat, chart.item.drawingSizes(), 0), 300);
    const double middle = chart.item.drawingSizes().center().x() - 40;
    EXPECT_TRUE(is_nearly(colour_at(flat, middle, 30), 0)) << "y 0 lies above the sweep numbers";
    EXPECT_FALSE(is_nearly(colour_at(flat, middle, 36), 0));
}

TEST(drawChartyItem, plots_a_group_of_two_or_more_and_otherwise_the_one_chosen) {
    drawn_chart chart({"0D", "05", "0C"});
    chart.item.set_item_2_plot(1);
    chart.item.updateNoOfPlots({2});
    EXPECT_TRUE(chart.item.isPlottingThisIndex(1));
    EXPECT_FALSE(chart.item.isPlottingThisIndex(2));
    chart.item.updateNoOfPlots({0, 2});
    EXPECT_FALSE(chart.item.isPlottingThisIndex(1));
    EXPECT_TRUE(chart.item.isPlottingThisIndex(2));

    chart.matrix.start(3);
    for (const char* speed : {"410D20", "410D40", "410D30"}) {
        chart.matrix.set(0, speed);
        chart.matrix.set(1, "410564");
        chart.matrix.set(2, "410C1AF8");
        chart.matrix.add_row();
    }
    const auto has = [&](int column) {
        return coloured(chart.draw(), chart.item.drawingSizes(), column) > 0;
    };
    EXPECT_TRUE(has(0));
    EXPECT_FALSE(has(1));
    EXPECT_TRUE(has(2));
    chart.item.setThumbnail(true);
    EXPECT_TRUE(has(1)) << "a thumbnail is of one PID";
    EXPECT_FALSE(has(2));
    chart.item.set_item_2_plot(9);
    chart.item.updateNoOfPlots({-1, 7});
    chart.draw();
}

TEST(drawChartyItem, gives_a_number_without_a_unit_that_of_its_pid) {
    drawn_chart chart({"E4"});
    const auto words = [&chart](const char* value) {
        chart.item.update_cur_sample({value});
        return chart.item.in_words(chart.item.work_out_labels(chart.matrix)).section(": ", 1);
    };
    EXPECT_EQ(words("7.270657"), "7.270657 km/litre");
    EXPECT_EQ(words("7.27 kpl"), "7.27 kpl");
    EXPECT_EQ(words("N/A"), "N/A");
}

TEST(fitted, has_the_ends_of_what_is_shown) {
    drawn_chart chart;
    chart.drive({10, 90, 50, 60, 55});
    chart.item.setNumberPointsToPlot(3);
    const chart_labels whole = chart.item.work_out_labels(chart.matrix);
    const chart_label shown = chart.item.fitted(whole, chart.matrix, false).constFirst();
    EXPECT_EQ(shown.minimum + ' ' + shown.maximum, "50.000000 60.000000");
    EXPECT_EQ(chart.item.fitted(whole, chart.matrix, true).constFirst().minimum, "0.000000");
    chart.drive({-1, -1});
    EXPECT_EQ(chart.item.fitted(whole, chart.matrix, true), whole) << "nothing to go by";
}

TEST(tile_grid, fills_the_room_with_two_to_six_columns) {
    const struct {
        int tiles;
        QSizeF room;
        int columns, rows;
    } examples[] = {
        {1, {1000, 500}, 1, 1}, {2, {1000, 500}, 2, 1},  {4, {1000, 500}, 2, 2},
        {6, {1900, 900}, 3, 2}, {24, {1900, 900}, 5, 5}, {24, {500, 900}, 2, 12}, // scrolls
    };
    for (const auto& [tiles, room, columns, rows] : examples) {
        const tile_grid grid = tile_grid::filling(tiles, room, {240, 110}, 8);
        EXPECT_EQ(grid.columns * 100 + grid.rows, columns * 100 + rows) << tiles;
        EXPECT_NEAR(grid.place(columns - 1).right(), room.width(), 0.01) << tiles;
        EXPECT_GE(grid.height(), room.height() - 0.01) << tiles;
        EXPECT_GE(grid.tile.height(), 110) << tiles;
    }
    EXPECT_EQ(tile_grid::filling(0, {100, 100}, {10, 10}, 8).rows, 0);
}

TEST(shown_value, is_a_number_in_the_locale_and_its_unit) {
    const struct {
        const char* text;
        double value;
        const char* shown;
    } rows[] = {
        {"16.88 V", 16.88, "16,88|V"},
        {"voltage 0.100 V", 0.1, "0,100|V"}, // of a rear oxygen sensor
        {"850.00", 850, "850,00|unit"},
        {"", 36.55, "36,5|unit"},
        {"~", 5, "\u2013|unit"},
        {"inf km/l", 5, "\u2013|unit"},
        {"Closed loop", 2, "Closed loop|"},
    };
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    for (const auto& [text, value, shown] : rows) {
        const value_text told = shown_value(QString::fromUtf8(text), value, "unit");
        EXPECT_EQ(told.number + '|' + told.unit, QString::fromUtf8(shown));
    }
    EXPECT_EQ(clock_text(1500, 1), "0:01,5");
    EXPECT_EQ(axis_values::between(0, 1, 4).text(0.25), "0,25");
    QLocale::setDefault(before);
}

TEST(drawChartyItem, is_drawn_in_the_pixels_of_the_screen) {
    drawn_chart chart({"0D"}, 2);
    chart.drive({10, 40, 20, 60, 30});
    const QImage& sharp = chart.draw();
    EXPECT_EQ(sharp.size(), QSize(1200, 600));
    EXPECT_EQ(sharp.deviceIndependentSize(), QSizeF(600, 300));
    drawn_chart plain;
    plain.drive({10, 40, 20, 60, 30});
    plain.draw();
    const QRectF plot = plain.item.drawingSizes();
    EXPECT_EQ(chart.item.drawingSizes(), plot);
    EXPECT_GT(coloured(sharp, {plot.topLeft() * 2, plot.size() * 2}, 0),
              2 * coloured(plain.item.imageRepresentation(), plot, 0));
}

TEST(time_axis, has_the_steps_of_a_clock) {
    const auto words = [](double from, double to) {
        const time_axis axis = time_axis::between(from, to, 5);
        QStringList texts;
        for (const double moment : axis.moments)
            texts += clock_text(moment, axis.decimals);
        return texts.join(' ');
    };
    EXPECT_EQ(words(0, 1000), "0:00.0 0:00.2 0:00.4 0:00.6 0:00.8 0:01.0");
    EXPECT_EQ(words(59'990, 60'030), "0:59.99 1:00.00 1:00.01 1:00.02 1:00.03");
    EXPECT_EQ(words(50'000, 190'000), "1:00 1:30 2:00 2:30 3:00");
    EXPECT_EQ(words(3'500'000, 7'300'000), "1:00:00 1:15:00 1:30:00 1:45:00 2:00:00");
    EXPECT_EQ(words(0, 400'000'000), "0:00 24:00:00 48:00:00 72:00:00 96:00:00");
    EXPECT_EQ(words(5, 5), "");
    EXPECT_EQ(words(0, std::nan("")), "");
    EXPECT_EQ(clock_text(59'999.99, 3), "0:59.999") << "not the minute before it is over";
}

TEST(axis_values, are_round_and_lie_between_the_ends) {
    EXPECT_EQ(axis_values::between(0, 4000, 5).values, QList<double>({0, 1000, 2000, 3000, 4000}));
    EXPECT_EQ(axis_values::between(50, 200, 4).values, QList<double>({50, 100, 150, 200}));
    EXPECT_EQ(axis_values::between(-40, 100, 4).values, QList<double>({0, 50, 100}));
    const axis_values quarters = axis_values::between(0, 1, 4);
    EXPECT_EQ(quarters.text(quarters.values[1]), "0.25");
    EXPECT_EQ(axis_values::between(0.3, 0.5, 2).text(0.4), "0.4");
    EXPECT_EQ(axis_values::between(-0.3, 0.1, 4).values.size(), 5);
    EXPECT_TRUE(axis_values::between(5, 5, 4).values.isEmpty());
    EXPECT_TRUE(axis_values::between(5, std::nan(""), 4).values.isEmpty());
    EXPECT_LE(axis_values::between(-1e300, 1e300, 8).values.size(), 12);
}

} // namespace

} // namespace brivant
