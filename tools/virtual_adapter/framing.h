#pragma once

#include "tools/virtual_adapter/car.h"

#include <string>

namespace virtual_adapter {

// How the adapter prints what it receives.
struct frame_style {
    bool headers = false;
    bool spaces = true;
    bool linefeeds = false;
    bool pad_single_frames = false;
    std::uint8_t padding = 0x00;
    std::size_t most_lines = SIZE_MAX; // frames after which the adapter stops listening
};

// Appends one line a frame, each with its line end, in the order in which the frames arrive on a network of
// that kind. CAN answers longer than seven bytes are segmented as by ISO 15765-2; with headers off their
// length precedes them and every frame is numbered.
void append_frames(std::string& out, const std::vector<answer>& answers, bus kind, const frame_style& style);

void append_line_end(std::string& out, bool linefeeds);

// The check byte of the older protocols over header and data.
std::uint8_t checksum(const bytes& message); // sum, ISO 9141-2 and ISO 14230
std::uint8_t crc(const bytes& message);      // SAE J1850

} // namespace virtual_adapter
