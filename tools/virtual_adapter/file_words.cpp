#include "tools/virtual_adapter/file_words.h"

#include "tools/virtual_adapter/hex_digit.h"

#include <algorithm>
#include <charconv>

namespace virtual_adapter {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string quoted(std::string_view word) {
    return '"' + std::string(word.substr(0, 40)) + '"';
}

} // namespace

file_words::file_words(std::string_view line) : m_rest(trimmed(line)) {}

std::string_view file_words::next(const char* what) {
    if (m_rest.empty())
        throw mistake{std::string(what) + " is missing"};
    const std::size_t end = std::min(m_rest.find_first_of(blanks), m_rest.size());
    const std::string_view word = m_rest.substr(0, end);
    m_rest = trimmed(m_rest.substr(end));
    return word;
}

std::string file_words::text(const char* what, std::size_t most) {
    const std::string_view taken = m_rest;
    m_rest = {};
    if (taken.empty())
        throw mistake{std::string(what) + " is missing"};
    if (taken.size() > most)
        throw mistake{std::string(what) + " is longer than " + std::to_string(most) + " characters"};
    if (std::any_of(taken.begin(), taken.end(), [](char c) { return c < ' ' || c > '~'; }))
        throw mistake{std::string(what) + " holds a character that is not printable ASCII"};
    return std::string(taken);
}

unsigned file_words::hex(const char* what, int digits) {
    const std::string_view word = next(what);
    unsigned value = 0;
    bool good = word.size() == std::size_t(digits);
    for (const char c : word) {
        const int digit = hex_digit(c);
        good = good && digit >= 0;
        value = value << 4 | unsigned(digit & 0xF);
    }
    if (!good)
        throw mistake{std::string(what) + " is not " + std::to_string(digits) +
                      " hexadecimal digits: " + quoted(word)};
    return value;
}

bytes file_words::rest_as_bytes(const char* what, std::size_t most) {
    bytes all;
    do
        all.push_back(byte(what));
    while (!at_end());
    if (all.size() > most)
        throw mistake{std::string(what) + " has more than " + std::to_string(most) + " bytes"};
    return all;
}

double file_words::number(const char* what, double least, double most) {
    const std::string_view word = next(what);
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    // A value that is no number at all compares false with both bounds.
    if (error != std::errc() || end != word.data() + word.size() || !(value >= least && value <= most))
        throw mistake{std::string(what) + " is not a number from " + std::to_string(int(least)) + " to " +
                      std::to_string(int(most)) + ": " + quoted(word)};
    return value;
}

bool file_words::choice(const char* yes, const char* no) {
    const std::string_view word = next(yes);
    if (word != yes && word != no)
        throw mistake{'"' + std::string(yes) + "\" or \"" + no + "\" expected: " + quoted(word)};
    return word == yes;
}

trouble_code file_words::code() {
    const std::string_view word = next("a trouble code");
    const std::size_t letter = word.empty() ? 4 : std::string_view("PCBU").find(word[0]);
    unsigned value = 0;
    bool good = word.size() == 5 && letter < 4 && hex_digit(word[1]) >= 0 && hex_digit(word[1]) < 4;
    for (const char c : word.substr(std::min<std::size_t>(1, word.size()))) {
        good = good && hex_digit(c) >= 0;
        value = value << 4 | unsigned(hex_digit(c) & 0xF);
    }
    if (!good)
        throw mistake{"not a trouble code: " + quoted(word)};
    return trouble_code(letter << 14 | value);
}

void file_words::expect_end() const {
    if (!m_rest.empty())
        throw mistake{"more than expected: " + quoted(m_rest)};
}

} // namespace virtual_adapter
