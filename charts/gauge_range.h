#pragma once

namespace brivant {

// The scale of a round gauge, and what raw values are divided by before they reach it.
struct gauge_scale {
    int minimum;
    int maximum;
    int scaling;
    bool operator==(const gauge_scale&) const = default;
};

// `pid`: the number of a mode 01 PID (0x0C); 0 to 100 for one that the table lacks.
gauge_scale gauge_range(int pid, bool metric);

} // namespace brivant
