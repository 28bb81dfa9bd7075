#pragma once

#include "tools/virtual_adapter/car.h"

#include <string>

namespace virtual_adapter {

// How the adapter prints what it receives.
struct frame_style {
    bool headers = false;
    bool spaces = true;
    bool linefeeds = false;
    bool formatted = true; // CAN frames without headers lose their length byte and are numbered
    bool pad_single_frames = false;
    std::uint8_t padding = 0x00;
};

// One frame of an answer.
struct frame {
    const answer* from = nullptr;
    const bytes* message = nullptr;
    std::size_t number = 0; // in the message; only CAN has more than one
};

// How many frames a message takes on CAN; those longer than seven bytes are segmented as by ISO 15765-2.
std::size_t can_frames(const bytes& message);

// Appends the line of a frame with its line end; with headers off, the first of a long answer is preceded by
// a line with its length.
void append_frame(std::string& out, const frame& received, bus kind, const frame_style& style);

void append_line_end(std::string& out, bool linefeeds);

// The check byte of the older protocols over header and data.
std::uint8_t checksum(const bytes& message); // sum, ISO 9141-2 and ISO 14230
std::uint8_t crc(const bytes& message);      // SAE J1850

} // namespace virtual_adapter
