#pragma once

#include "diagnostics/diagnostic_results.h"

#include <functional>
#include <optional>

namespace brivant {

// The text that an operation leaves behind, and how its log is labelled in the database.
struct diagnostic_report {
    QString title;       // LOG_TYPE
    QString description; // INFO
    QString text;
    QString raw; // a second chunk: the raw records of a misfire or O2 test; "" for none
};

// The report of the operation (a code of operation_code.h); nothing for an operation that leaves none.
// `today`: the date of its heading. `describe`: a code's description. The text is for reading: for the
// database, single quotes have to be doubled.
std::optional<diagnostic_report> work_out_text_4_log(int operation, const diagnostic_results& results,
                                                     const QString& today,
                                                     const std::function<QString(const QString&)>& describe);

// The parts whose answers make the report of an operation.
QList<part> parts_behind(int operation);

// The text without the piece of HTML that one of its lines holds.
QString without_markup(QString report);

} // namespace brivant
