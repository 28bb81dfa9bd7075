#include "tools/virtual_adapter/framing.h"

#include <algorithm>

namespace virtual_adapter {

namespace {

constexpr char digits[] = "0123456789ABCDEF";
constexpr std::size_t can_size = 8;
constexpr std::size_t most_segmented = 4095; // the length has twelve bits

void append_byte(std::string& out, std::uint8_t value, bool spaces) {
    out += digits[value >> 4];
    out += digits[value & 0xF];
    if (spaces)
        out += ' ';
}

void append_three_digits(std::string& out, unsigned value) {
    for (int shift = 8; shift >= 0; shift -= 4)
        out += digits[value >> shift & 0xF];
}

void append_can_header(std::string& out, std::uint32_t address, bus kind, bool spaces) {
    if (kind == bus::can29) {
        for (int shift = 24; shift >= 0; shift -= 8)
            append_byte(out, std::uint8_t(address >> shift), spaces);
        return;
    }
    append_three_digits(out, address & 0x7FF);
    if (spaces)
        out += ' ';
}

bool shows_length(const frame_style& style) {
    return style.headers || !style.formatted;
}

void append_single_frame(std::string& out, const bytes& message, const frame_style& style) {
    if (shows_length(style))
        append_byte(out, std::uint8_t(message.size()), style.spaces);
    for (const std::uint8_t value : message)
        append_byte(out, value, style.spaces);
    if (shows_length(style) && style.pad_single_frames)
        for (std::size_t i = message.size() + 1; i < can_size; ++i)
            append_byte(out, style.padding, style.spaces);
}

// Number 0 is the first frame with six bytes, the others carry seven each and a four-bit sequence number.
void append_segment(std::string& out, const bytes& message, std::size_t number, const frame_style& style) {
    const std::size_t length = std::min(message.size(), most_segmented);
    const std::size_t start = number == 0 ? 0 : 6 + (number - 1) * 7;
    const std::size_t count = number == 0 ? 6 : 7;
    if (!shows_length(style)) {
        out += digits[number & 0xF];
        out += style.spaces ? ": " : ":";
    } else if (number == 0) {
        append_byte(out, std::uint8_t(0x10 | length >> 8), style.spaces);
        append_byte(out, std::uint8_t(length), style.spaces);
    } else {
        append_byte(out, std::uint8_t(0x20 | (number & 0xF)), style.spaces);
    }
    for (std::size_t i = start; i < start + count; ++i)
        append_byte(out, i < length ? message[i] : style.padding, style.spaces);
}

void append_can(std::string& out, const frame& received, bus kind, const frame_style& style) {
    const bytes& message = *received.message;
    const bool is_single = message.size() < can_size;
    if (style.headers) {
        append_can_header(out, received.from->address, kind, style.spaces);
    } else if (style.formatted && !is_single && received.number == 0) {
        append_three_digits(out, unsigned(std::min(message.size(), most_segmented)));
        append_line_end(out, style.linefeeds);
    }
    if (is_single)
        append_single_frame(out, message, style);
    else
        append_segment(out, message, received.number, style);
}

// Three bytes: priority and kind, target, source. ISO 14230 keeps the length in the first.
bytes legacy_frame(const bytes& message, std::uint8_t address, bus kind) {
    const bool kwp = kind == bus::kwp;
    const std::size_t first = kwp ? 0x80 | (message.size() & 0x3F) : kind == bus::pwm ? 0x41 : 0x48;
    bytes whole;
    whole.reserve(message.size() + 4);
    whole.push_back(std::uint8_t(first));
    whole.push_back(kwp ? 0xF1 : 0x6B);
    whole.push_back(address);
    for (const std::uint8_t value : message)
        whole.push_back(value);
    whole.push_back(kind == bus::pwm || kind == bus::vpw ? crc(whole) : checksum(whole));
    return whole;
}

void append_legacy(std::string& out, const frame& received, bus kind, const frame_style& style) {
    const bytes& message = *received.message;
    for (const std::uint8_t value :
         style.headers ? legacy_frame(message, std::uint8_t(received.from->address), kind) : message)
        append_byte(out, value, style.spaces);
}

} // namespace

std::size_t can_frames(const bytes& message) {
    const std::size_t length = std::min(message.size(), most_segmented);
    return length < can_size ? 1 : 1 + length / 7; // six bytes, then seven a frame, rounded up
}

void append_frame(std::string& out, const frame& received, bus kind, const frame_style& style) {
    if (is_can(kind))
        append_can(out, received, kind, style);
    else
        append_legacy(out, received, kind, style);
    append_line_end(out, style.linefeeds);
}

void append_line_end(std::string& out, bool linefeeds) {
    out += linefeeds ? "\r\n" : "\r";
}

std::uint8_t checksum(const bytes& message) {
    unsigned sum = 0;
    for (const std::uint8_t value : message)
        sum += value;
    return std::uint8_t(sum);
}

std::uint8_t crc(const bytes& message) {
    std::uint8_t rest = 0xFF;
    for (const std::uint8_t value : message) {
        rest ^= value;
        for (int bit = 0; bit < 8; ++bit)
            rest = std::uint8_t(rest & 0x80 ? rest << 1 ^ 0x1D : rest << 1);
    }
    return std::uint8_t(~rest);
}

} // namespace virtual_adapter
