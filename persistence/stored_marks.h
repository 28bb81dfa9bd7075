#pragma once

#include "formats/run_values.h"
#include "persistence/database.h"

namespace brivant {

// The marks that a person put into a stored run.

inline constexpr qsizetype most_marks = 1000; // of a run

// A word as it is kept: one line of at most 120 characters, without control characters; "Mark N" for none.
QString text_of_mark(const QString& word, qsizetype number);
// False when it could not be stored.
bool store_mark(database& db, int log_id, const timed_mark& mark);
// In the order of their time. Logs of older programs have none.
QList<timed_mark> marks_of_run(database& db, int log_id);

} // namespace brivant
