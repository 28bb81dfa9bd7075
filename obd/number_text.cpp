#include "obd/number_text.h"

#include <algorithm>
#include <charconv>

namespace brivant {

namespace {

// "500", "05" and " +5mV" are non-zero integers, "000" and "" are not.
bool begins_with_non_zero_integer(QStringView text) {
    text = text.trimmed();
    if (text.startsWith(u'+') || text.startsWith(u'-'))
        text = text.sliced(1);
    while (text.startsWith(u'0'))
        text = text.sliced(1);
    return !text.isEmpty() && text.front() >= u'1' && text.front() <= u'9';
}

} // namespace

QString with_decimals(double value, int decimals) {
    char digits[400]; // the largest double has 309 digits before its point
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed,
                                   std::clamp(decimals, 0, 60));
    return QString::fromLatin1(digits, end.ptr - digits);
}

QString formatForDisplay(double value) {
    return with_decimals(value, value < 1 ? 3 : value < 10 ? 2 : value < 100 ? 1 : 0);
}

QString formatStringWithDouble(const QString& text, int no_of_decs) {
    const qsizetype point = text.indexOf(QLatin1Char('.'));
    bool is_number = false;
    const float value = text.toFloat(&is_number);
    if (point < 0 || !is_number)
        return text;
    const bool has_fraction = begins_with_non_zero_integer(QStringView(text).sliced(point + 1));
    return with_decimals(value, has_fraction ? no_of_decs : 0);
}

} // namespace brivant
