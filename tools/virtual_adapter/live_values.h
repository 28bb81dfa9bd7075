#pragma once

#include "tools/virtual_adapter/car_description.h"
#include "tools/virtual_adapter/drive_cycle.h"

namespace virtual_adapter {

// What the values of a moment are made from.
struct moment {
    drive_state drive;
    double battery_v = 0;
    double mil_km = 0;     // driven with the MIL on
    double cleared_km = 0; // driven since the codes were cleared
    double fuel_level = 0; // 0..1
};

// Whether the drive cycle has a value for this mode 01 PID.
bool has_live_value(std::uint8_t pid);

// Appends the data bytes of a PID that has_live_value, in the scaling of SAE J1979.
void append_live_value(bytes& out, std::uint8_t pid, const moment& now);

} // namespace virtual_adapter
