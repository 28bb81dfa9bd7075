#include "formats/drive_figures.h"

#include "tests/formats/run_bench.h"

#include <cmath>
#include <functional>

namespace brivant {

namespace {

// Engine speed, vehicle speed and fuel rate, each a while behind the start of its sweep.
run_head figures_head() {
    run_head head = drive_head();
    head.columns[2] = {"5E", "Engine fuel rate", "L/h by SAE J1979"};
    return head;
}

const std::vector<double> offsets{5, 40, 75};

// A drive of which the true speed (km/h) at each moment (s) is known, sampled every `interval` ms.
drive_figures driven(const std::function<double(double)>& speed, double seconds, double interval,
                     const run_head& head = figures_head(), double litres_an_hour = 6) {
    drive_figures figures(head);
    for (double ms = 0; ms < seconds * 1000; ms += interval)
        figures.add({ms, {1000 + ms / 1000, speed((ms + offsets[1]) / 1000), litres_an_hour}, offsets, {}});
    return figures;
}

double seconds_of(const drive_figures& figures, int sprint) {
    const auto& best = figures.times()[sprint].best();
    return best ? best->seconds : -1;
}

} // namespace

// A car that stands for two seconds, then gains so many km/h a second up to 130. The true times lie within
// the uncertainty that is told, at any rate of sampling.
TEST(drive_figures, times_from_speed_to_speed) {
    for (const double gain : {6.0, 12.5, 23.0})
        for (const double interval : {40.0, 137.0, 400.0, 900.0}) {
            const auto figures =
                driven([&](double t) { return std::clamp((t - 2) * gain, 0.0, 130.0); }, 30, interval);
            const double truth[] = {50 / gain, 100 / gain, 40 / gain};
            for (int i = 0; i < 3; ++i) {
                const speed_times& sprint = figures.times()[i];
                ASSERT_TRUE(sprint.best()) << gain << ' ' << interval << ' ' << i;
                EXPECT_EQ(sprint.times(), 1);
                EXPECT_NEAR(sprint.best()->seconds, truth[i], sprint.best()->uncertainty);
                EXPECT_NEAR(sprint.best()->uncertainty, interval / 1000 * std::sqrt(0.5), 1e-9);
            }
            EXPECT_NEAR(seconds_of(figures, 2), 40 / gain, 1e-9); // a line is met exactly
        }
}

TEST(drive_figures, which_times_count) {
    struct row {
        QList<QPair<double, double>> samples; // s, km/h
        double to_50, to_100, from_80;        // -1 for none
        int of;                               // of 0 to 50
    };
    const QList<row> rows{
        {{{0, 0}, {1, 10}, {5, 50}}, 4.5, -1, -1, 1},
        {{{0, 10}, {1, 20}, {5, 100}, {6, 130}}, -1, -1, 5.667 - 4, 0}, // never stood
        {{{0, 0}, {1, 30}, {2, 20}, {4, 60}}, 3, -1, -1, 1},            // lifted, but did not stand
        {{{0, 0}, {1, 30}, {2, 0}, {3, 60}}, 0.333, -1, -1, 1},         // stood again
        {{{0, 0}, {2, 60}, {3, 0}, {4, 60}, {5, 0}, {9, 60}}, 0.333, -1, -1, 3},
        {{{0, 0}, {6, 60}}, -1, -1, -1, 0}, // six seconds nobody knows of
        {{{0, 0}, {1, 90}, {3, 70}, {4, 90}, {5, 130}}, 0.056, 3.75, 1.25, 1},
        {{{0, 0}, {1, 0}, {2, 0}}, -1, -1, -1, 0},
    };
    for (const row& one : rows) {
        drive_figures figures(figures_head());
        for (const auto& [seconds, speed] : one.samples)
            figures.add({seconds * 1000, {std::nullopt, speed, std::nullopt}, {}, {}});
        EXPECT_NEAR(seconds_of(figures, 0), one.to_50, 0.001);
        EXPECT_NEAR(seconds_of(figures, 1), one.to_100, 0.001);
        EXPECT_NEAR(seconds_of(figures, 2), one.from_80, 0.001);
        EXPECT_EQ(figures.times()[0].times(), one.of);
    }
}

TEST(drive_figures, way_and_fuel) {
    const double pi = std::acos(-1);
    const auto wave = [&](double t) { return 60 - 60 * std::cos(2 * pi * t / 60); }; // 60 km/h on the mean
    const auto figures = driven(wave, 3600.05, 100);
    EXPECT_NEAR(figures.distance_km(), 60, 0.001);
    EXPECT_NEAR(figures.fuel_l(), 6, 0.001);
    EXPECT_NEAR(*figures.litres_a_100_km(), 10, 0.001);
    EXPECT_NEAR(figures.duration_s(), 3600, 0.2);
    EXPECT_NEAR(figures.moving_s(), 3600, 0.2);
    EXPECT_NEAR(figures.without_speed_s(), 0, 0.2);
    const auto columns = figures.columns();
    EXPECT_NEAR(columns[1].mean, 60, 0.001);
    EXPECT_NEAR(columns[1].smallest, 0, 0.01);
    EXPECT_NEAR(columns[1].largest, 120, 0.01);
    EXPECT_NEAR(columns[0].mean, 1000 + 1800, 0.1);
    EXPECT_EQ(columns[2].samples, 36001);

    run_head in_miles = figures_head();
    in_miles.by_standard = true;
    in_miles.columns[1].unit = "mph by SAE J1979";
    in_miles.columns[2].unit = "gal/h by SAE J1979";
    const auto american =
        driven([&](double t) { return wave(t) / 1.609344; }, 3600.05, 100, in_miles, 6 / 3.785411784);
    EXPECT_NEAR(american.distance_km(), 60, 0.001);
    EXPECT_NEAR(*american.litres_a_100_km(), 10, 0.001);
    EXPECT_NEAR(seconds_of(american, 0), seconds_of(figures, 0), 0.001);
}

// What happens in a gap belongs to no figure, and its length is told; a mean weighs by time, not by samples.
TEST(drive_figures, gaps_and_odd_runs) {
    drive_figures figures(figures_head());
    const auto at = [&](double s, std::optional<double> speed) {
        figures.add({s * 1000, {900.0, speed, {}}, {}, {}});
    };
    at(0, 36);
    at(1, std::nullopt); // one reply lost
    at(4, 36);
    at(14, 36); // a link lost
    at(15, 0);
    at(16, 0);
    EXPECT_NEAR(figures.distance_km(), 0.045, 1e-9);
    EXPECT_NEAR(figures.moving_s(), 5, 1e-9);
    EXPECT_NEAR(figures.without_speed_s(), 10, 1e-9);
    EXPECT_NEAR(figures.columns()[1].mean, (36 * 4 + 18) / 6.0, 1e-9);
    EXPECT_EQ(figures.columns()[2].samples, 0);
    EXPECT_FALSE(figures.litres_a_100_km());

    run_head strange = figures_head();
    strange.columns[1].unit = "N/A";
    drive_figures none(strange);
    EXPECT_FALSE(none.has_speed());
    EXPECT_TRUE(none.times().isEmpty());
    none.add({0, {900.0, 50.0}, {}, {}});
    EXPECT_EQ(none.columns()[0].mean, 900); // one sample alone
    EXPECT_EQ(none.distance_km(), 0);
}

// Two sweeps share a fix; one without tells nothing, and what lies far apart is no way.
TEST(drive_figures, distance_by_the_receiver) {
    drive_figures figures(figures_head());
    EXPECT_FALSE(figures.gps_distance_km());
    const auto add = [&figures](double ms, std::optional<double> speed, double told_ms) {
        timed_sweep sweep{ms, {1000, 50, 6}, offsets, geo_position{52.5, 13.25}};
        sweep.position->speed = speed;
        sweep.position->offset_ms = told_ms - ms;
        figures.add(sweep);
    };
    add(0, 10, -500);
    add(400, 10, -500.004);
    EXPECT_FALSE(figures.gps_distance_km());
    add(800, 20, 500);
    add(1200, std::nullopt, 1100);
    add(2000, 20, 1500);
    add(9000, 20, 8900);
    EXPECT_DOUBLE_EQ(figures.gps_distance_km().value_or(0), 0.035);
}

} // namespace brivant
