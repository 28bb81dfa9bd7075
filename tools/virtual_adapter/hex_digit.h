#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace virtual_adapter {

// The value of an upper-case hexadecimal digit, -1 for any other character.
constexpr int hex_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The value of one to eight such digits; nothing for any other text.
constexpr std::optional<std::uint32_t> hex_number(std::string_view digits) {
    if (digits.empty() || digits.size() > 8)
        return std::nullopt;
    std::uint32_t value = 0;
    for (const char c : digits) {
        if (hex_digit(c) < 0)
            return std::nullopt;
        value = value << 4 | std::uint32_t(hex_digit(c));
    }
    return value;
}

// A number in that many digits.
inline std::string hex_text(std::uint32_t value, int digits) {
    std::string text;
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[value >> shift & 0xF];
    return text;
}

} // namespace virtual_adapter
