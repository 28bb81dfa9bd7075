#include "tools/virtual_adapter/chip_versions.h"

namespace virtual_adapter {

namespace {

struct known_command {
    std::string_view command;
    double since;
    const char* answer;
};

// clang-format off
constexpr known_command known[] = {
    {"R0",    1.0,  "OK"}, {"R1",    1.0,  "OK"}, {"CS", 1.0, "T:00 R:00"},
    {"PPS",   1.1,  "00:FF F  01:FF F  02:FF F  03:32 F\r04:01 F  05:FF F  06:F1 F  07:09 F"},
    {"FCSM0", 1.1,  "OK"}, {"FCSM1", 1.1,  "OK"}, {"FCSM2", 1.1, "OK"},
    {"KW0",   1.2,  "OK"}, {"KW1",   1.2,  "OK"},
    {"D0",    1.3,  "OK"}, {"D1",    1.3,  "OK"}, {"JE", 1.3, "OK"}, {"JS", 1.3, "OK"},
    {"FE",    1.31, "OK"},
    {"CEA",   1.4,  "OK"}, {"IGN",   1.4,  "ON"}, {"RD", 1.4, "FF"},
    {"JHF0",  1.42, "OK"}, {"JHF1",  1.42, "OK"},
    {"AMC",   2.0,  "00"},
    {"CTM1",  2.1,  "OK"}, {"CTM5",  2.1,  "OK"},
};
// clang-format on

} // namespace

const char* answer_by_version(std::string_view command, double version) {
    for (const known_command& one : known)
        if (one.command == command && one.since <= version)
            return one.answer;
    return nullptr;
}

} // namespace virtual_adapter
