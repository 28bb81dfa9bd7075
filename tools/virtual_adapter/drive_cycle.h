#pragma once

namespace virtual_adapter {

// What the drive cycle needs to know of the engine.
struct engine_model {
    bool diesel = false;
    double displacement_l = 2.0;
    double boost_kpa = 0; // pressure of the turbocharger at full load, above the atmosphere
};

// The car at one moment. The values belong together: speed and gear give the engine speed, the slope of the
// speed gives the load, load gives manifold pressure, pressure and engine speed give the air flow.
struct drive_state {
    double run_time_s = 0;
    double speed_kmh = 0;
    int gear = 0; // 0 in neutral, at a standstill
    double engine_rpm = 0;
    double load = 0;         // 0..1
    double throttle = 0;     // 0..1
    double pedal = 0;        // 0..1
    double manifold_kpa = 0; // absolute
    double air_flow_gs = 0;
    double coolant_c = 0;
    double intake_air_c = 0;
    double ignition_deg = 0; // before top dead centre
    double short_trim = 0;   // per cent
    double long_trim = 0;    // per cent
    double o2_front_v = 0;   // switches around 0.45 V once warm
    double o2_rear_v = 0;    // steady behind the converter
    double rail_kpa = 0;     // fuel rail pressure above the atmosphere
    double egr = 0;          // 0..1, commanded
    double purge = 0;        // 0..1, commanded
    double fuel_rate_lh = 0;
    double distance_km = 0; // since the engine was started
};

constexpr double barometric_kpa = 101;
constexpr double ambient_c = 18;

// A moment of a steady 60 km/h with a warm engine, in seconds.
constexpr double steady_moment_s = 1177;

// The car `seconds` after the start of its engine. The cycle (town, road, motorway, stop) repeats every five
// minutes; the engine starts cold and stays warm. Negative or not finite counts as 0.
drive_state drive_at(double seconds, const engine_model& engine);

} // namespace virtual_adapter
