#pragma once

#include "tools/virtual_adapter/car_description.h"
#include "tools/virtual_adapter/live_values.h"

#include <span>

namespace virtual_adapter {

// What an answer depends on besides the ECU.
struct circumstances {
    bool can = true;
    moment now;
};

// The messages with which the ECU answers an OBD request of SAE J1979 (services 01, 02, 03, 06, 07, 09, 0A)
// or of service 22; empty when it stays silent. `request` is not empty. Service 04 is the car's: it changes
// it.
std::vector<bytes> messages_for(const ecu& unit, std::span<const std::uint8_t> request,
                                const circumstances& at);

} // namespace virtual_adapter
