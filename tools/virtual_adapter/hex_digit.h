#pragma once

namespace virtual_adapter {

// The value of an upper-case hexadecimal digit, -1 for any other character.
constexpr int hex_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace virtual_adapter
