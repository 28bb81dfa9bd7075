#include "tools/virtual_adapter/drive_cycle.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace virtual_adapter {

namespace {

struct corner {
    double time_s;
    double speed_kmh;
};

// Straight lines between these corners; the last one stands for the first of the next round.
constexpr std::array<corner, 24> corners{{
    {0, 0},     {8, 0},     {18, 32},  {34, 32},  {42, 0},   {54, 0},   {69, 50},   {95, 50},
    {103, 35},  {116, 35},  {124, 0},  {136, 0},  {161, 70}, {181, 70}, {196, 100}, {221, 100},
    {231, 120}, {246, 120}, {262, 60}, {288, 60}, {294, 20}, {296, 10}, {298, 0},   {300, 0},
}};
constexpr double round_s = corners.back().time_s;

struct gear_step {
    double up_to_kmh;
    double rpm_per_kmh;
};
constexpr std::array<gear_step, 5> gears{{{15, 115}, {30, 64}, {48, 43}, {68, 32}, {1000, 26}}};

constexpr double idle_rpm = 780;
constexpr double warm_c = 90;

// No road is quite even, and no foot quite still: a slow and a quick unevenness, both 0 at the steady moment.
constexpr double steady_time_s = 277;
static_assert(steady_moment_s == 3 * round_s + steady_time_s);

double unevenness(double time_in_round, double turns_a_minute) {
    return std::sin((time_in_round - steady_time_s) * turns_a_minute * 2 * 3.14159265358979 / 60);
}

struct motion {
    double speed_kmh;
    double accel_ms2;
    double distance_km; // since the start of the round
};

motion motion_at(double time_in_round) {
    double distance = 0;
    for (std::size_t i = 1; i < corners.size(); ++i) {
        const corner& from = corners[i - 1];
        const corner& to = corners[i];
        const double span = to.time_s - from.time_s;
        const double passed = std::min(time_in_round - from.time_s, span);
        const double slope = (to.speed_kmh - from.speed_kmh) / span; // km/h per second
        const double speed = from.speed_kmh + slope * passed;
        distance += (from.speed_kmh + speed) / 2 * passed / 3600;
        if (time_in_round > to.time_s)
            continue;
        // A steady speed is held to about a kilometre an hour.
        const double held =
            slope == 0 && speed > 0 ? std::clamp(std::min(passed, span - passed) / 2, 0.0, 1.0) : 0;
        return {speed + 0.9 * held * unevenness(time_in_round, 4), slope / 3.6, distance};
    }
    return {0, 0, distance};
}

// Share of the engine's torque that the road asks for: friction of the engine itself, rolling resistance,
// wind and acceleration. Below 0.05 the injection is cut off and the engine only pumps air.
double load_of(const motion& now) {
    if (now.speed_kmh < 1)
        return 0.19;
    const double wind = 2.2e-5 * now.speed_kmh * now.speed_kmh;
    return std::clamp(0.17 + 0.0006 * now.speed_kmh + wind + 0.42 * now.accel_ms2, 0.03, 1.0);
}

} // namespace

drive_state drive_at(double seconds, const engine_model& engine) {
    drive_state s;
    s.run_time_s = std::isfinite(seconds) ? std::max(seconds, 0.0) : 0.0;
    const double t = s.run_time_s;
    const double rounds = std::floor(t / round_s);
    static const double round_km = motion_at(round_s).distance_km;
    const motion now = motion_at(t - rounds * round_s);

    s.speed_kmh = now.speed_kmh;
    s.distance_km = rounds * round_km + now.distance_km;

    const double cold = std::exp(-t / 150); // 1 at the start, 0 when warm
    const double idle = idle_rpm + 350 * cold + 12 * std::sin(t * 2.1);
    s.engine_rpm = idle;
    if (s.speed_kmh >= 1) {
        const auto* gear = std::find_if(gears.begin(), gears.end(),
                                        [&](const gear_step& g) { return s.speed_kmh < g.up_to_kmh; });
        s.gear = int(gear - gears.begin()) + 1;
        s.engine_rpm = std::max(idle, s.speed_kmh * gear->rpm_per_kmh);
    }

    s.load = load_of(now);
    if (s.speed_kmh >= 1 && s.load > 0.05) {
        const double in_round = t - rounds * round_s;
        s.load = std::clamp(s.load + 0.035 * unevenness(in_round, 5) + 0.015 * unevenness(in_round, 23), 0.05,
                            1.0);
    }
    s.pedal = std::clamp((s.load - 0.18) * 1.15, 0.0, 1.0);
    s.throttle = engine.diesel ? 0.9 : 0.12 + 0.8 * s.pedal;
    s.coolant_c = warm_c - (warm_c - ambient_c) * cold + 1.5 * std::sin(t / 23) * (1 - cold);
    s.intake_air_c = ambient_c + 14 * (1 - cold) + 9 * s.load * engine.boost_kpa / 100;

    const double unthrottled = barometric_kpa + engine.boost_kpa * s.load;
    s.manifold_kpa =
        engine.diesel ? unthrottled : 22 + (barometric_kpa + engine.boost_kpa - 22) * std::pow(s.load, 1.25);
    // Every second turn fills the cylinders once; air weighs pressure / (287 J/kgK x temperature).
    const double volume_ls = engine.displacement_l * s.engine_rpm / 120;
    s.air_flow_gs = 0.85 * volume_ls * s.manifold_kpa * 1000 / (287 * (s.intake_air_c + 273.15));

    const bool fuel_cut = s.load < 0.05;
    const double air_fuel = engine.diesel ? 60 - 38 * s.load : 14.7;
    s.fuel_rate_lh = fuel_cut ? 0 : s.air_flow_gs / air_fuel * 3600 / (engine.diesel ? 835 : 745);
    s.ignition_deg = engine.diesel ? 4 : 10 + s.engine_rpm / 160 - 14 * s.load;
    s.rail_kpa = engine.diesel ? 30000 + 130000 * s.load : 390;
    s.egr = s.coolant_c > 60 && s.load > 0.1 && s.load < 0.6 ? 0.22 : 0.0;
    s.purge = s.coolant_c > 60 && s.speed_kmh > 20 ? 0.3 : 0.0;

    // Closed loop from about 12 seconds on: the heated front sensor crosses the middle about once a second.
    const double phase = std::sin(t * 5.9);
    const bool closed_loop = t > 12 && !fuel_cut;
    s.o2_front_v = fuel_cut ? 0.06 : closed_loop ? 0.45 + 0.36 * std::tanh(4 * phase) : 0.45;
    s.o2_rear_v = fuel_cut ? 0.1 : 0.66 + 0.05 * std::sin(t / 7);
    s.short_trim = closed_loop ? -3.5 * std::tanh(2 * std::sin(t * 5.9 - 0.5)) : 0;
    s.long_trim = 2.3;
    return s;
}

} // namespace virtual_adapter
