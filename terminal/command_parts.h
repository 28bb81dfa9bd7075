#pragma once

#include "diagnostics/readCodes.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"

#include <QJsonArray>
#include <QJsonObject>

namespace brivant {

// Pieces of results that several commands print. Rows that name no code are left out.
QJsonArray codes_as_json(readCodes& controller, const QList<result_row>& rows);
// A line a code; the text for no codes when there is none.
QString codes_as_text(readCodes& controller, const QList<result_row>& rows);

second_reading both_readings(readCodes& controller, part which);
// `object` with "standard": what the replies hold by SAE J1979, in the shape of the program's own result;
// "differs"; "reading": which of the two the plain text shows, "program" or "standard".
QJsonObject with_standard(QJsonObject object, QJsonObject standard, const QList<second_reading>& readings);
// The shown rows, made texts by `as_text`, each with its note below it; at the end the line about all of
// them.
QString shown_as_text(const second_reading& reading, QString (*as_text)(const result_row& row));
// That line, "" without one.
QString line_as_text(const second_reading& reading);

second_status both_statuses(readCodes& controller);
// The lamp and the announced codes in the reading that is shown, and what the other one says.
QString status_as_text(readCodes& controller, const second_status& status);
QJsonArray readiness_as_json(const QList<readiness_row>& rows);

// The permanent codes and the monitors of the drive cycle.
QJsonObject permanent_json(readCodes& controller);
QString permanent_text(readCodes& controller);

} // namespace brivant
