#pragma once

#include "diagnostics/readCodes.h"

#include <QJsonArray>

// Pieces of results that several commands print. `rows`: "P0133|7E8"; rows that name no code are left out.
QJsonArray codes_as_json(readCodes& controller, const QStringList& rows);
// A line a code; the text for no codes when there is none.
QString codes_as_text(readCodes& controller, const QStringList& rows);
