#pragma once

#include "diagnostics/second_reading.h"

namespace brivant {

// Two lists of trouble codes beside each other.

// The rows; those that are not among the others are marked with `note`. A code that one list holds more often
// than the other is marked from then on.
QList<noted_row> marked(const QList<result_row>& rows, const QList<result_row>& others, int protocol,
                        const QString& note);
// The marked codes among them, without what stands beside them.
QList<noted_row> codes_marked(const QList<noted_row>& rows);
// "P0133, P0420"
QString codes_in(const QList<noted_row>& rows);
// The codes of the freeze frames that the ECUs hold, by SAE J1979.
QStringList freezing_codes(const reply& frames);

} // namespace brivant
