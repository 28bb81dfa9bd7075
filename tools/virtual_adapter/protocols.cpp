#include "tools/virtual_adapter/protocols.h"

#include <array>

namespace virtual_adapter {

const protocol* find_protocol(int number) {
    // clang-format off
    static constexpr std::array<protocol, 12> protocols{{
        { 1, bus::pwm,       0, false, "SAE J1850 PWM"},
        { 2, bus::vpw,       0, false, "SAE J1850 VPW"},
        { 3, bus::iso9141,   0, true,  "ISO 9141-2"},
        { 4, bus::kwp,       0, true,  "ISO 14230-4 (KWP 5BAUD)"},
        { 5, bus::kwp,       0, false, "ISO 14230-4 (KWP FAST)"},
        { 6, bus::can11,   500, false, "ISO 15765-4 (CAN 11/500)"},
        { 7, bus::can29,   500, false, "ISO 15765-4 (CAN 29/500)"},
        { 8, bus::can11,   250, false, "ISO 15765-4 (CAN 11/250)"},
        { 9, bus::can29,   250, false, "ISO 15765-4 (CAN 29/250)"},
        {10, bus::j1939,   250, false, "SAE J1939 (CAN 29/250)"},
        {11, bus::can11,   125, false, "USER1 (CAN 11/125)"},
        {12, bus::can11,    50, false, "USER2 (CAN 11/50)"},
    }};
    // clang-format on
    return number < 1 || number > int(protocols.size()) ? nullptr : &protocols[std::size_t(number - 1)];
}

} // namespace virtual_adapter
