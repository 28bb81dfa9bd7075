#pragma once

#include <QString>

namespace brivant {

// What a view of the live-data screen is told as it happens. A call comes inside the handling of a reply, up
// to some hundred times a second: the view notes what changed and draws at its next frame. What changed
// stands in live_results. One that overrides nothing watches nothing.
class run_observer {
public:
    virtual ~run_observer() = default;

    // The sample set, its rows and the matrix were made anew: a mode or other PIDs were chosen, a run begins,
    // or the car has told its oxygen sensors.
    virtual void set_changed() {}
    // actions::is_running() has changed.
    virtual void run_started() {}
    virtual void run_ended() {}
    // Row `index` of these_samples and its column in the last row of the matrix have a new value.
    virtual void sample_arrived(int /*index*/) {}
    // Every PID of the set was asked for and one has a value; the sweep is stored where it is to be. The
    // matrix has its next row.
    virtual void sweep_completed() {}
    // No PID of the set has a value any more, or the link is lost: the matrix has a row without values. Told
    // once, however long it lasts; the next sweep_completed() ends it.
    virtual void gap_begun() {}
    // It lasts five minutes: the car is left alone, so as not to empty its battery.
    virtual void car_gone() {}
    // The sensors that the car has, by the map of PID 13 or 1D, and the ECU that told; set_changed() follows.
    virtual void o2_layout_known(int /*mask*/, const QString& /*header*/) {}
    // A sensor of the picture has a new value ("0.450"; "nan" for none). Comes with sample_arrived().
    virtual void set_sensor_value(int /*sensor*/, const QString& /*this_value*/) {}
};

} // namespace brivant
