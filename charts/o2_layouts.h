#pragma once

#include "obd/pid_catalogue.h"

#include <QStringList>
#include <array>
#include <cstddef>
#include <span>

namespace brivant {

// Where the oxygen sensors stand in the schematic of the exhaust, in its own coordinates with y upward: the
// centre of a sensor's dot, and the lower left of its value.
struct o2_sensor_place {
    int index; // in the sample set, which follows the bits of the sensors-present map
    const char* name;
    int dot_x, dot_y;
    int value_x, value_y;
};

struct o2_layout {
    std::array<o2_sensor_place, 6> sensors;
    std::size_t count = 0;
    bool two_banks = false;
    bool joined = false; // by a Y pipe, behind which the last sensor stands

    std::span<const o2_sensor_place> places() const { return {sensors.data(), count}; }
};

// The sensors of a sensors-present map, "S12", in the order of its bits.
QStringList o2_sensor_names(int mask, o2_banks banks);
// The layout for the map, which its number of bits picks where these are the layout's sensors; else each
// sensor stands at the point of its own name, and one that the picture has no point for is left out. Without
// sensors for a map of none and of more than 6.
o2_layout o2_layout_of(int mask, o2_banks banks);

// The places in a run's set of the sensors of 0 to 1.275 V (PIDs 14 to 1B), a bit each.
unsigned switching_sensors(const QStringList& set);

} // namespace brivant
