#pragma once

#include "tools/virtual_adapter/drive_cycle.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace virtual_adapter {

using bytes = std::vector<std::uint8_t>;
using trouble_code = std::uint16_t; // two bits letter (P C B U), then 14 bits as SAE J2012 packs them

// One mode 01 PID: constant bytes, or following the drive cycle.
struct pid_value {
    bool live = false;
    bytes constant;
};

// One record of service 06 on CAN. Limits are inclusive.
struct test_record {
    std::uint8_t test_id = 0;
    std::uint8_t unit_and_scaling = 0;
    std::uint16_t value = 0;
    std::uint16_t minimum = 0;
    std::uint16_t maximum = 0;
};

// One result of service 06 on the older protocols: a component with one limit.
struct limit_record {
    std::uint8_t component = 0;
    bool is_minimum = false;
    std::uint16_t value = 0;
    std::uint16_t limit = 0;
};

// Frame 0, of an ECU that can keep one.
struct freeze_frame {
    trouble_code code = 0;                // 0: nothing is stored
    std::map<std::uint8_t, bytes> values; // by PID, without 02
};

// A refusal: requests of the service that the ECU has nothing for are answered 7F, service, code.
struct refusal {
    std::optional<std::uint8_t> service; // none: every service
    std::uint8_t code = 0;
};

struct ecu {
    std::uint32_t address = 0; // response identifier on CAN (7E8, 18DAF110), one byte elsewhere
    std::map<std::uint8_t, pid_value> pids;
    std::array<std::uint8_t, 3> readiness{}; // bytes B, C, D of PID 01
    std::optional<bool> mil;                 // none: on when there is a confirmed code
    std::vector<trouble_code> codes, pending, permanent;
    std::optional<freeze_frame> frame;
    bytes vin;                             // 17 bytes, or none
    std::vector<std::string> calibrations; // up to 16 characters each
    std::vector<std::uint32_t> verification_numbers;
    std::string name;                                              // the 20 bytes of the ECU name, or none
    std::map<std::uint8_t, std::vector<test_record>> monitors;     // by OBDMID
    std::map<std::uint8_t, std::vector<limit_record>> test_limits; // by test ID
    std::map<std::uint16_t, bytes> data;                           // service 22, by identifier
    std::vector<refusal> refusals;
};

// A car as its file describes it.
struct car_description {
    std::string name;
    int protocol_number = 0; // 1..9
    int battery_tenths = 126;
    bool ignition = true;
    bool engine_runs = false;    // refuses to clear codes
    std::uint8_t padding = 0x00; // fills the unused bytes of CAN frames
    bool pads_single_frames = false;
    double fuel_level = 0.6;
    double mil_km = 0;
    double cleared_km = 0;
    engine_model engine;
    std::vector<std::string> adapter_refuses; // AT commands (upper case, without blanks) answered "?"
    std::vector<ecu> ecus;                    // in the order in which they answer
};

} // namespace virtual_adapter
