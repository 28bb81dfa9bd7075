#pragma once

#include <optional>

namespace brivant {

// The times that a car takes from one speed to another, of samples in the order of their time.
//
// A crossing lies between two samples; its moment is interpolated along the line between them, and is
// uncertain by half their distance. Leaving standstill has no crossing on that line: its moment is the middle
// between the last sample at rest and the first that moves. The two uncertainties are taken for independent.
class speed_times {
public:
    struct time {
        double seconds;
        double uncertainty; // seconds, either way
        double began_ms;
    };

    // In km/h; `from` 0 is standstill.
    speed_times(double from_speed, double to_speed) : from(from_speed), to(to_speed) {}

    // A sample further than `longest_gap_ms` behind the one before begins anew.
    void add(double ms, double speed, double longest_gap_ms);

    double from_kmh() const { return from; }
    double to_kmh() const { return to; }
    // The shortest, and of how many.
    const std::optional<time>& best() const { return shortest; }
    int times() const { return counted; }

private:
    struct sample {
        double ms;
        double speed;
    };
    struct moment {
        double ms;
        double uncertainty;
    };
    static moment crossing(const sample& before, const sample& behind, double speed);
    bool is_below_start(double speed) const { return from > 0 ? speed < from : speed <= 0; }

    double from;
    double to;
    std::optional<sample> latest;
    std::optional<moment> begun;
    std::optional<time> shortest;
    int counted = 0;
};

} // namespace brivant
