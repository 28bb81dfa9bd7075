#include "tools/virtual_adapter/file_words.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::string in_quotes(std::string_view word) {
    return '"' + std::string(word.substr(0, 40)) + '"';
}

bool is_hex(std::string_view word) {
    return word.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

unsigned from_hex(std::string_view word) {
    unsigned value = 0;
    std::from_chars(word.data(), word.data() + word.size(), value, 16);
    return value;
}

} // namespace

file_words::file_words(std::string_view line) : m_rest(trimmed(line)) {}

std::string_view file_words::next(const std::string& what) {
    expect(!at_end(), what + " is missing");
    const std::string_view word = m_rest.substr(0, m_rest.find_first_of(blanks));
    m_rest = trimmed(m_rest.substr(word.size()));
    return word;
}

bool file_words::take(std::string_view word) {
    const bool comes = m_rest.substr(0, m_rest.find_first_of(blanks)) == word;
    if (comes)
        m_rest = trimmed(m_rest.substr(word.size()));
    return comes;
}

std::string file_words::text(const std::string& what, std::size_t most) {
    const std::string taken(std::exchange(m_rest, {}));
    expect(!taken.empty(), what + " is missing");
    expect(taken.size() <= most, what + " is longer than " + std::to_string(most) + " characters");
    expect(std::all_of(taken.begin(), taken.end(), [](char c) { return c >= ' ' && c <= '~'; }),
           what + " holds a character that is not printable ASCII");
    return taken;
}

unsigned file_words::hex(const std::string& what, std::size_t digits) {
    const std::string_view word = next(what);
    expect(word.size() == digits && is_hex(word),
           what + " is not " + std::to_string(digits) + " hexadecimal digits: " + in_quotes(word));
    return from_hex(word);
}

bytes file_words::rest_as_bytes(const std::string& what, std::size_t most) {
    bytes all;
    do
        all.push_back(byte(what));
    while (!at_end());
    expect(all.size() <= most, what + " has more than " + std::to_string(most) + " bytes");
    return all;
}

double file_words::number(const std::string& what, double least, double most) {
    const std::string_view word = next(what);
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    // A value that is no number at all compares false with both bounds.
    expect(error == std::errc() && end == word.data() + word.size() && value >= least && value <= most,
           what + " is not a number from " + std::to_string(int(least)) + " to " + std::to_string(int(most)) +
               ": " + in_quotes(word));
    return value;
}

bool file_words::choice(const std::string& yes, const std::string& no) {
    const std::string_view word = next(yes);
    expect(word == yes || word == no,
           in_quotes(yes) + " or " + in_quotes(no) + " expected: " + in_quotes(word));
    return word == yes;
}

trouble_code file_words::code() {
    const std::string_view word = next("a trouble code");
    const std::size_t letter = std::string_view("PCBU").find(word[0]);
    expect(word.size() == 5 && letter < 4 && is_hex(word.substr(1)) && word[1] < '4',
           "not a trouble code: " + in_quotes(word));
    return trouble_code(letter << 14 | from_hex(word.substr(1)));
}

void file_words::expect_end() const {
    expect(at_end(), "more than expected: " + in_quotes(m_rest));
}

} // namespace virtual_adapter
