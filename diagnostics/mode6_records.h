#pragma once

#include "obd/reply.h"

class text_resources;

// The answers to service 06 (SAE J1979, on-board monitoring test results) as rows. A row is a "|"-joined
// text; its last field is the triple of its limit bar, joined by "~".

struct mode6_rows {
    QStringList rows;
    QStringList raw; // a compact copy of each CAN record
};

// `groupIdx`: the index of the test asked for, which leads each row.
// CAN: records of nine bytes, each OBDMID, TID, UASID, value, minimum, maximum; a record that is cut, or lies
// behind a lost frame, is left out. Older protocols: a message a test, TID, component, value and one limit; a
// short message is filled up with "0".
mode6_rows handle_a_mode6_TestID(const ecu_said& ecu, int groupIdx, const text_resources& lists);

// A test as a row of its own; the texts are those that are shown, the identifiers hex digits.
struct can_test {
    QString obdmid;
    QString tid;
    QString unit;
    QString minimum;
    QString value;
    QString maximum;
    bool passed = false;
};
QString can_test_row(const can_test& test, int index, const text_resources& lists);
struct legacy_test {
    QString tid;
    QString component; // hex digits, without the bit that tells the kind of limit
    unsigned value = 0;
    unsigned limit = 0;
    bool limit_is_minimum = false;
};
QString legacy_test_row(const legacy_test& test, int index);

// A row taken apart for the views.
struct mode6_row {
    int index = 0;
    QString title;   // the monitor, or test and component
    QString subject; // unit and test, or the component
    QString text;    // the values and the verdict
    QString limits;  // "minimum~value~maximum", or "limit~value~max" / "limit~value~min"
    // CAN
    QString obdmid;
    QString monitor;
    QString unit;
    QString test;
    // older protocols
    QString component;

    QString tid;
    double minimum = 0;
    double value = 0;
    double maximum = 0;
    bool is_can = false;
    bool limit_is_maximum = false; // older protocols
    bool passed = false;
};
mode6_row split_mode6_row(const QString& row);

struct bar_color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const bar_color&) const = default;
};
// Red outside the limits, else green. A value that equals its limit is inside. The misfire flag changes
// nothing.
bar_color work_out_bar_color(double value, double max, double min, bool is_CAN, bool non_can_max,
                             bool is_misfire);

// The detail text of a row as HTML, from its triple.
QString work_out_result_html(const QString& limits, const QString& units, bool isFail);
