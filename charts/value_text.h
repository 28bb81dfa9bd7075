#pragma once

#include <QString>

namespace brivant {

// A value as a person reads it, with the decimal sign of the locale.
struct value_text {
    QString number;
    QString unit;
};

// `text`: how the program tells the value ("850.00 RPM", "voltage 0.100 V", "~"), "" where its number alone
// is known; `unit`: that of the PID, for a text that has none. No value is a dash.
value_text shown_value(const QString& text, double value, const QString& unit);

// A number text ("16.88") with the decimal sign of the locale.
QString in_locale(const QString& number);

} // namespace brivant
