#pragma once

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

// The layout for a sensors-present map, which its number of bits picks; without sensors for 0 and for more
// than 6.
const o2_layout& o2_layout_of(int mask);

} // namespace brivant
