#pragma once

#include "tools/virtual_adapter/addressing.h"

namespace virtual_adapter {

constexpr int usual_wait_units = 0x32; // of 4.096 ms

// What "AT D" puts back.
struct adapter_settings {
    bool echo = true;
    bool headers = false;
    bool spaces = true;
    bool linefeeds = false;
    bool formats_can = true;   // takes the length byte and the frame numbers off and puts them on
    bool controls_flow = true; // asks for the rest of a long CAN answer
    int wait_units = usual_wait_units;
    int wait_ms = 0; // 0: by the units
    int adaptive = 1;
    request_header header;
    receive_filters receives;
};

} // namespace virtual_adapter
