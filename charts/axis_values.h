#pragma once

#include <QList>
#include <QString>

namespace brivant {

// The round values that an axis shows between its ends.
struct axis_values {
    QList<double> values; // ascending; empty when the ends have no range
    int decimals = 0;

    // At most about `wanted` values, each a whole multiple of 1, 2, 2.5 or 5 times a power of ten.
    static axis_values between(double minimum, double maximum, int wanted);
    QString text(double value) const;
};

// A number for a person to read at a glance: four figures or fewer behind each other, "1250", "36.6",
// "0.455".
QString short_number(double value);

} // namespace brivant
