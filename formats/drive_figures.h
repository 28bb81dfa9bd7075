#pragma once

#include "formats/run_values.h"
#include "formats/speed_times.h"

namespace brivant {

// What a run says of the drive, of its sweeps fed one after the other. Every sample counts at its own moment,
// that of the sweep and its offset; between two samples the value is taken for a line, unless they are
// further apart than longest_gap_ms: what happened there is not known and belongs to no figure.
class drive_figures {
public:
    static constexpr double longest_gap_ms = 5000;

    struct of_column {
        run_column column;
        qint64 samples = 0;
        double smallest = 0; // these three only with samples
        double largest = 0;
        double mean = 0; // over time
    };

    explicit drive_figures(const run_head& head);
    void add(const timed_sweep& sweep);

    QList<of_column> columns() const;
    double duration_s() const { return (last_ms - first_ms) / 1000; }

    // By the vehicle speed (PID 0D); false and nothing below where the run has none in a unit that is known.
    bool has_speed() const { return speed_column >= 0; }
    double distance_km() const { return distance; }
    // By the receiver's speed, of runs with positions; nothing where it told none.
    std::optional<double> gps_distance_km() const { return gps_distance; }
    double moving_s() const { return moving; }
    // Of the duration: how long the speed is not known.
    double without_speed_s() const { return has_speed() ? duration_s() - with_speed : duration_s(); }
    const QList<speed_times>& times() const { return sprints; }

    // By the engine's fuel rate (PID 5E), in the same way.
    bool has_fuel() const { return fuel_column >= 0; }
    double fuel_l() const { return fuel; }
    // Of what was driven and used while both are known; nothing without a way.
    std::optional<double> litres_a_100_km() const;

private:
    struct sample {
        double ms;
        double value;
    };
    struct progress {
        qint64 samples = 0;
        double smallest = 0;
        double largest = 0;
        double sum = 0;   // of the samples
        double area = 0;  // under the line, value times milliseconds
        double under = 0; // the milliseconds of that line
        std::optional<sample> latest;
    };
    struct step {
        double ms;    // between the two samples, 0 where there is no line
        double value; // the middle of the line
    };

    void take_position(const timed_sweep& sweep);
    step take(qsizetype column, const timed_sweep& sweep);

    run_head run;
    QList<progress> gathered; // a column
    qsizetype speed_column = -1;
    qsizetype fuel_column = -1;
    double to_kmh = 1;
    double to_litres = 1;
    QList<speed_times> sprints;
    bool has_begun = false;
    double first_ms = 0;
    double last_ms = 0;
    double distance = 0;
    std::optional<sample> latest_gps_speed; // metres a second
    std::optional<double> gps_distance;
    double moving = 0;
    double with_speed = 0;
    double fuel = 0;
    double shared_km = 0;     // of sweeps in which both the way
    double shared_litres = 0; // and the fuel are known
};

} // namespace brivant
