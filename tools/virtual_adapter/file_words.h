#pragma once

#include "tools/virtual_adapter/car_description.h"

#include <string_view>

namespace virtual_adapter {

// What is wrong with a line of a car file. Thrown by file_words and the reader, caught by parse_car.
struct mistake {
    std::string reason;
};

inline void expect(bool good, const std::string& otherwise) {
    if (!good)
        throw mistake{otherwise};
}

// The words of one line of a car file, taken one after the other; `what` names a word in the mistake.
// Hexadecimal numbers are of fixed width, so that a lost digit is noticed.
class file_words {
public:
    explicit file_words(std::string_view line); // without its comment

    bool at_end() const { return m_rest.empty(); }
    bool begins_with(char c) const { return m_rest.starts_with(c); }
    std::string_view next(const std::string& what);
    bool take(std::string_view word);                            // when it comes next
    std::string text(const std::string& what, std::size_t most); // the rest of the line; printable ASCII
    unsigned hex(const std::string& what, std::size_t digits);
    std::uint8_t byte(const std::string& what) { return std::uint8_t(hex(what, 2)); }
    std::uint16_t word(const std::string& what) { return std::uint16_t(hex(what, 4)); }
    bytes rest_as_bytes(const std::string& what, std::size_t most); // at least one
    double number(const std::string& what, double least, double most);
    bool choice(const std::string& yes, const std::string& no); // true for the first
    trouble_code code();                                        // "P0133"
    void expect_end() const;

private:
    std::string_view m_rest; // begins with a word, or is empty
};

} // namespace virtual_adapter
