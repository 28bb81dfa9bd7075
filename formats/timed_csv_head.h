#pragma once

#include "formats/export_columns.h"

namespace brivant {

// The first line of a timed CSV. RFC 4180 has no comments: some readers of such files skip lines that begin
// with "#", others take the first line for the names whatever it holds, so what the run is stands in that
// line too, as the name of a last column whose cells are empty. Names are quoted because a reader that
// guesses the separator counts blanks outside quotes.
//
//   Time,RPM,KPH,"Engine coolant temperature (C)",Mark,"About: Brivant Lite 0.1.0; start 2026-...Z; ..."
//
// Time is in seconds from the start. Engine speed, vehicle speed and throttle carry the names that RaceRender
// knows them by, so that it needs no help; their units are in the names, or among those of the last column.

QString csv_name_of(const export_column& column, const run_head& head);
QString csv_cell(const QString& text); // quoted where it has to be
// The names of all columns as they stand in the file, not quoted.
QStringList timed_csv_names(const run_head& head);
// The head of the run that a last column of this name tells; nothing and a problem when it tells none.
std::optional<run_head> head_of_timed_csv(const QString& last_name, QString& problem);

} // namespace brivant
