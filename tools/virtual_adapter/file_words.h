#pragma once

#include "tools/virtual_adapter/car_description.h"

#include <string_view>

namespace virtual_adapter {

// What is wrong with a line of a car file. Thrown by file_words and the reader, caught by parse_car.
struct mistake {
    std::string reason;
};

// The words of one line of a car file, taken one after the other. Hexadecimal numbers are of fixed width, so
// that a lost digit is noticed.
class file_words {
public:
    explicit file_words(std::string_view line); // without its comment

    bool at_end() const { return m_rest.empty(); }
    std::string_view next(const char* what);              // `what` names the missing word in the mistake
    std::string text(const char* what, std::size_t most); // the rest of the line; printable ASCII
    unsigned hex(const char* what, int digits);
    std::uint8_t byte(const char* what) { return std::uint8_t(hex(what, 2)); }
    std::uint16_t word(const char* what) { return std::uint16_t(hex(what, 4)); }
    bytes rest_as_bytes(const char* what, std::size_t most); // at least one
    double number(const char* what, double least, double most);
    bool choice(const char* yes, const char* no); // true for the first
    trouble_code code();                          // "P0133"
    void expect_end() const;

private:
    std::string_view m_rest; // begins with a word, or is empty
};

} // namespace virtual_adapter
