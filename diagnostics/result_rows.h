#pragma once

#include "base/screen.h"

#include <QStringList>
#include <variant>

namespace brivant {

// What the diagnostic operations tell, a row each. Both readings of a reply make rows of these kinds.

// A trouble code.
struct code_row {
    QString code; // "P0133"
    QString ecu;  // the header of the ECU that stores it, "" when it cannot be told
    bool operator==(const code_row&) const = default;
};

// A sentence in the place of rows.
struct words_row {
    QString text;
    bool operator==(const words_row&) const = default;
};

// A value, or a fact about the car.
struct value_row {
    QString pid; // hex digits, "" for what is no PID: the voltage, the VIN
    QString label;
    QString value; // with its unit, or "N/A"
    QString more;  // what the value means: the description of a code, the ECUs that are counted
    bool operator==(const value_row&) const = default;
};

// The values that follow are this ECU's.
struct ecu_row {
    QString header;
    QString name;
    qsizetype pids = 0; // that it supports
    bool is_first = true;
    bool operator==(const ecu_row&) const = default;
};

// The result of an on-board monitoring test. Identifiers are hex digits, numbers as they are shown.
struct test_row {
    int index = 0; // of the test asked for
    bool is_can = false;
    QString tid;
    QString value;
    QString minimum; // on an older protocol both limits are its only one
    QString maximum;
    bool passed = false;
    // CAN
    QString obdmid;
    QString monitor; // its name
    QString test;    // its name
    QString unit;
    QString scaled; // the value with all of its digits, and the unit
    // Older protocols
    QString component;
    bool limit_is_maximum = false;

    bool operator==(const test_row&) const = default;
    // Clearing sets the value and both limits to 0 until the test has run again.
    bool was_not_run() const;
    QString title() const;   // the monitor, or the test
    QString subject() const; // unit and test, or the component
    QString text() const;    // the values and the verdict
    QString limits() const;  // "minimum~value~maximum", or "limit~value~max" / "limit~value~min"
};

using result_row = std::variant<words_row, code_row, value_row, ecu_row, test_row>;

// The row as one text whose fields are parted by "|", as it stands in results that are stored or handed on:
// "P0133|7E8", "0C|Engine RPM|1726.00 RPM".
QString row_text(part where, const result_row& row);
QStringList row_texts(part where, const QList<result_row>& rows);

// The rows of one kind.
template <class kind>
QList<kind> rows_of(const QList<result_row>& rows) {
    QList<kind> found;
    for (const result_row& row : rows)
        if (const kind* one = std::get_if<kind>(&row))
            found += *one;
    return found;
}

} // namespace brivant
