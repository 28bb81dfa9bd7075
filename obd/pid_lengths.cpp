#include "obd/pid_lengths.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

struct length_run {
    int first;
    int last;
    int bytes;
};

// Without the fuel trims (06 to 09, 55 to 58), whose length follows the number of banks.
constexpr std::array runs{
    length_run{0x00, 0x01, 4}, length_run{0x02, 0x03, 2}, length_run{0x04, 0x05, 1},
    length_run{0x0A, 0x0B, 1}, length_run{0x0C, 0x0C, 2}, length_run{0x0D, 0x0F, 1},
    length_run{0x10, 0x10, 2}, length_run{0x11, 0x13, 1}, length_run{0x14, 0x1B, 2},
    length_run{0x1C, 0x1E, 1}, length_run{0x1F, 0x1F, 2}, length_run{0x20, 0x20, 4},
    length_run{0x21, 0x23, 2}, length_run{0x24, 0x2B, 4}, length_run{0x2C, 0x30, 1},
    length_run{0x31, 0x32, 2}, length_run{0x33, 0x33, 1}, length_run{0x34, 0x3B, 4},
    length_run{0x3C, 0x3F, 2}, length_run{0x40, 0x41, 4}, length_run{0x42, 0x44, 2},
    length_run{0x45, 0x4C, 1}, length_run{0x4D, 0x4E, 2}, length_run{0x4F, 0x50, 4},
    length_run{0x51, 0x52, 1}, length_run{0x53, 0x54, 2}, length_run{0x59, 0x59, 2},
    length_run{0x5A, 0x5C, 1}, length_run{0x5D, 0x5E, 2}, length_run{0x5F, 0x5F, 1},
    length_run{0x60, 0x60, 4}, length_run{0x61, 0x62, 1}, length_run{0x63, 0x63, 2},
    length_run{0x64, 0x64, 5},
};

} // namespace

int pid_length(int pid) {
    const auto run = std::find_if(runs.begin(), runs.end(), [pid](const length_run& one) {
        return pid >= one.first && pid <= one.last;
    });
    return run == runs.end() ? 0 : run->bytes;
}

} // namespace brivant
