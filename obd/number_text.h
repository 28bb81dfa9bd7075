#pragma once

#include <QString>
#include <algorithm>

namespace brivant {

// Numbers written as text and read back, independent of the locale.

// printf's "%.<decimals>f": exact ties go to the even digit, as printf has it and QString::number has not.
// Decimals outside 0 to 60 are brought into that range.
QString with_decimals(double value, int decimals);

// Three decimals below 1 (negative values included), two below 10, one below 100, else none.
QString formatForDisplay(double value);

// The number text with `no_of_decs` decimals when the part after its first "." is a non-zero integer, else
// rounded to a whole number ("61.000000" gives "61"). Text without "." and text that is no number come back
// unchanged. The value goes through single precision.
QString formatStringWithDouble(const QString& text, int no_of_decs);

// 0 to 15, or -1 for a character that is no hex digit.
constexpr int hex_digit(QChar character) {
    const char16_t c = character.unicode();
    return c >= u'0' && c <= u'9'   ? c - u'0'
           : c >= u'A' && c <= u'F' ? c - u'A' + 10
           : c >= u'a' && c <= u'f' ? c - u'a' + 10
                                    : -1;
}

// The byte written at `at`, or -1 when the text does not hold two hex digits there.
constexpr int hex_byte(QStringView text, qsizetype at) {
    if (at < 0 || at + 2 > text.size())
        return -1;
    const int high = hex_digit(text[at]);
    const int low = hex_digit(text[at + 1]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

// False for an empty text too.
inline bool is_hex_text(QStringView text) {
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar character) { return hex_digit(character) >= 0; });
}

// printf's counterpart "%d" over digits: the decimal number that the text begins with, 0 when it begins with
// none. Only the first nine digits count.
constexpr int leading_decimal(QStringView text) {
    int value = 0;
    for (qsizetype i = 0; i < text.size() && i < 9 && text[i] >= u'0' && text[i] <= u'9'; ++i)
        value = value * 10 + (text[i].unicode() - u'0');
    return value;
}

} // namespace brivant
