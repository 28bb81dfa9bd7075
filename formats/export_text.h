#pragma once

#include "formats/run_values.h"

#include <QByteArray>
#include <QStringList>

namespace brivant {

// The texts that the log formats share. Numbers have a point, whatever the locale.

// The shortest text that reads back as the same number; without an exponent while it is of a usual size.
QByteArray number_text(double value);
// Milliseconds as seconds with six decimals: a clock's microsecond.
QByteArray seconds_text(double ms);
// "2026-11-22T10:00:00.123Z", `ms` after the start of the run.
QString utc_text(const run_head& head, double ms = 0);
// Escaped for an element or an attribute, without the characters that XML 1.0 does not take.
QString xml_text(const QString& text);

// What a run is, a statement an item: the program, the start, the vehicle, whose reading, which units.
QStringList about_run(const run_head& head);

// The statements of about_run, for those who read them again.
inline const QString about_program = QStringLiteral("Brivant Lite ");
inline const QString about_start = QStringLiteral("start ");
inline const QString about_vehicle = QStringLiteral("vehicle ");
QString about_reading(bool by_standard);
QString about_units(unit_system units);

} // namespace brivant
