#include "charts/myGauge.h"

#include "tests/charts/chart_bench.h"

#include <array>
#include <gtest/gtest.h>
#include <numbers>

namespace brivant {

namespace {

constexpr double begin = 3.839724354387525;
constexpr double end = -0.6981317007977318;

double degrees(double value, double minimum, double maximum) {
    return gauge_needle_for({182, 104}, value, begin, end, minimum, maximum, 20, 140).angle * 180 /
           std::numbers::pi;
}

TEST(gauge_needle, turns_clockwise_from_220_to_minus_40_degrees) {
    const std::array<double, 4> rows[] = {
        // value, minimum, maximum, degrees
        {0, 0, 10, 220},      {5, 0, 10, 90},       {10, 0, 10, -40},
        {12, 0, 10, -92},     {-1, 0, 10, 246}, // past the ends
        {-40, -40, 260, 220}, {260, -40, 260, -40}, {0, -100, 100, 90},
        {10, 10, 20, -40}, // a minimum above 0 does not count
    };
    for (const auto& [value, minimum, maximum, angle] : rows)
        EXPECT_NEAR(degrees(value, minimum, maximum), angle, 1e-9)
            << value << " of " << minimum << " to " << maximum;

    const gauge_needle up = gauge_needle_for({182, 104}, 5, begin, end, 0, 10, 20, 140);
    EXPECT_NEAR(up.tip.y(), 244, 1e-9);
    EXPECT_NEAR(up.left.x(), 196, 1e-9);
    EXPECT_NEAR(up.right.x(), 168, 1e-9);
}

TEST(gauge_range, is_that_of_the_table_with_its_gaps) {
    const std::tuple<int, gauge_scale, gauge_scale> examples[] = {
        {5, {-40, 260, 1}, {-40, 560, 1}}, {12, {0, 10, 1000}, {0, 10, 1000}},
        {34, {0, 10, 1000}, {0, 2, 1000}}, {50, {-10, 10, 1000}, {-50, 50, 1}},
        {71, {0, 100, 1}, {0, 100, 1}},    {229, {-160, 240, 1}, {-20, 30, 1}},
    };
    for (const auto& [pid, metric, imperial] : examples) {
        EXPECT_EQ(gauge_range(pid, true), metric) << pid;
        EXPECT_EQ(gauge_range(pid, false), imperial) << pid;
    }
}

// Whether the needle covers the place at this angle and distance from the hub.
bool needle_at(const QImage& picture, double degrees_up, double distance) {
    const double angle = degrees_up * std::numbers::pi / 180;
    const QColor colour =
        colour_at(picture, 182 + distance * std::cos(angle), 104 + distance * std::sin(angle));
    return colour.red() > 200 && colour.green() < 80 && colour.blue() < 80;
}

TEST(myGauge, draws_the_needle_on_a_copy_of_the_face) {
    chart_bench bench;
    myGauge gauge(bench.toolies);
    gauge.draw_cur_needle_value(1);
    for (const double ratio : {1.0, 2.0}) {
        gauge.set_pixel_ratio(ratio);
        gauge.initGauge("0C|7E8");
        EXPECT_EQ(gauge.imageRepresentation().deviceIndependentSize().width(), 364);
        EXPECT_TRUE(needle_at(gauge.imageRepresentation(), 220, 60)) << "at rest";
        gauge.draw_cur_needle_value(3000);
        EXPECT_TRUE(needle_at(gauge.imageRepresentation(), 142, 60)) << "3 on a face of thousands";
        EXPECT_TRUE(needle_at(gauge.imageRepresentation(), 142, 120));
        EXPECT_FALSE(needle_at(gauge.imageRepresentation(), 220, 60));
        const QImage at_3000 = gauge.imageRepresentation();
        gauge.draw_cur_needle_value(std::nan(""));
        EXPECT_FALSE(needle_at(gauge.imageRepresentation(), 142, 60));
        gauge.draw_cur_needle_value(3000);
        EXPECT_EQ(gauge.imageRepresentation(), at_3000);
        EXPECT_EQ(gauge.imageRepresentation().pixelColor(at_3000.width() / 2, at_3000.height() / 2).alpha(),
                  255);
    }
    gauge.swapCurGaugeBack("05");
    EXPECT_TRUE(needle_at(gauge.imageRepresentation(), 220, 60)) << "the minimum is below zero";
    gauge.draw_cur_needle_value(110);
    EXPECT_TRUE(needle_at(gauge.imageRepresentation(), 90, 60));
    gauge.set_pixel_ratio(1);
    EXPECT_TRUE(needle_at(gauge.imageRepresentation(), 90, 60)) << "the value outlives another resolution";
    EXPECT_NE(colour_at(gauge.imageRepresentation(), 182, 266), QColor(0xf2, 0xc9, 0x4c)) << "no peak yet";
    gauge.set_peak(110);
    gauge.draw_cur_needle_value(-40);
    EXPECT_EQ(colour_at(gauge.imageRepresentation(), 182, 266), QColor(0xf2, 0xc9, 0x4c))
        << "a mark above the middle";
    gauge.initGauge("no PID");
}

} // namespace

} // namespace brivant
