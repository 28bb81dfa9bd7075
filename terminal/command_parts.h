#pragma once

#include "diagnostics/readCodes.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"

#include <QJsonArray>
#include <QJsonObject>

namespace brivant {

// Pieces of results that several commands print. Rows that name no code are left out.
QJsonArray codes_as_json(readCodes& controller, const QList<result_row>& rows);
// A line a row, what is said beside a code behind it; the text for no codes when there are no rows.
QString codes_as_text(readCodes& controller, const QList<noted_row>& rows);

second_reading both_readings(readCodes& controller, part which);
// The result of the reading that is shown, and below "standard" or "program" the other one's in the same
// shape; "differs"; "reading": which of the two is shown, "program" or "standard"; "faults": what was
// refused, damaged or not answered.
QJsonObject both_results(const QJsonObject& own, const QJsonObject& standard,
                         const QList<second_reading>& readings);
// The shown rows, made texts by `as_text`, each with its note below it, and what is said of all of them:
// above them where a person would act on it.
QString shown_as_text(const second_reading& reading, QString (*as_text)(const result_row& row));
// The shown rows of a list of codes, in the same way.
QString shown_codes_as_text(readCodes& controller, const second_reading& reading);

second_status both_statuses(readCodes& controller);
// The lamp and the announced codes in the reading that is shown, and what the other one says.
QString status_as_text(readCodes& controller, const second_status& status);
QJsonArray readiness_as_json(const QList<readiness_row>& rows);

// The permanent codes and the monitors of the drive cycle.
QJsonObject permanent_json(readCodes& controller);
QString permanent_text(readCodes& controller);

} // namespace brivant
