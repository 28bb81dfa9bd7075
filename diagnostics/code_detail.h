#pragma once

#include "diagnostics/code_list.h"

namespace brivant {

// All that is known of one trouble code.
struct code_detail {
    struct frame_value {
        QString label;
        QString value;
    };

    QString code;
    QString ecu;              // as a person reads it: "7E8 Engine"
    QString description;      // in the list, or what its form tells
    QString kinds;            // "confirmed, froze the frame"
    QString note;             // what the other reading says
    QList<frame_value> frame; // the main values of the freeze frame that it froze
    QString tests;            // of the same system, in words; "" without any

    // For the clipboard, a line each.
    QString as_text() const;
};
// `frame`, `tests`: the rows shown of the freeze frame and of service 06.
code_detail detail_of(const listed_code& row, const QString& description, const QString& ecu_name,
                      const QList<noted_row>& frame, const QList<noted_row>& tests);

} // namespace brivant
