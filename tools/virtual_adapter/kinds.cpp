#include "tools/virtual_adapter/kinds.h"

namespace virtual_adapter {

namespace {

// Plausible numbers, not those of a certain device; milliseconds but for the baud rate. Commands, lines and
// flow control are what the chip needs for them.
struct kind {
    std::string_view name;
    const char* banner;
    double commands_of; // the version that it is
    const char* st_identity;
    double command, line, flow_control;
    int baud;
    double round_trip, jitter;
};

// clang-format off
constexpr kind kinds[] = {
    // name          banner          is    STI               command  line  flow    baud  round trip  jitter
    {"elm327-v1.4", "ELM327 v1.4",  1.4,  "",                1,       0.5,  1,      38400,  2,         1},  // USB
    {"clone-2.1",   "ELM327 v2.1",  1.31, "",                6,       3,    2,      38400, 30,        20},  // Bluetooth
    {"wifi",        "ELM327 v1.5",  1.42, "",                3,       1.5,  1.5,   115200,  6,         8},
    {"ble",         "ELM327 v2.2",  2.2,  "",                2,       1,    1,     115200, 60,        30},
    {"stn",         "ELM327 v1.4b", 1.42, "STN1110 v4.0.1",  0.3,     0.1,  0.2,   115200,  2,         1},  // USB
};
// clang-format on

// Of a car of its time, the same behind every adapter.
const std::vector<double> ecu_ms{10, 14};
constexpr double ecu_spread_ms = 6;

} // namespace

std::optional<adapter_options> adapter_of_kind(std::string_view name) {
    for (const kind& one : kinds) {
        if (one.name != name)
            continue;
        timing takes;
        takes.ecu_ms = ecu_ms;
        takes.ecu_spread_ms = ecu_spread_ms;
        takes.command_ms = one.command;
        takes.line_ms = one.line;
        takes.flow_control_ms = one.flow_control;
        takes.baud = one.baud;
        takes.round_trip_ms = one.round_trip;
        takes.jitter_ms = one.jitter;
        return adapter_options{.banner = one.banner,
                               .commands_of = one.commands_of,
                               .st_identity = one.st_identity,
                               .time = takes};
    }
    return std::nullopt;
}

std::vector<std::string_view> adapter_kinds() {
    std::vector<std::string_view> names;
    for (const kind& one : kinds)
        names.push_back(one.name);
    return names;
}

} // namespace virtual_adapter
