#pragma once

#include "persistence/database.h"
#include <optional>

namespace brivant {

// The headers of stored results: one row of LOGGIES each.
struct log_header {
    int id = -1;
    int veh_id = -1;
    QString type; // "DTC", "Veh_info", "Mode6", "Misfire", "O2 Test", "O2", "Boost", "Fuel" or "Log"
    QString info;
    QString time_stamp; // UTC, "yyyy-MM-dd HH:mm:ss"
};

// The header in a row of LOGGIES; none when its ids are no numbers.
std::optional<log_header> log_header_of(const QStringList& row);
std::optional<log_header> log_with_id(database& db, int log_id);

// The chunks of a log, in the order in which they were stored: a row of LOGGIES_DATA each.
enum log_chunk_column { chunk_data = 1, chunk_time_stamp = 3 };
QString chunks_statement(int log_id);
// The replies in a line of a sampling run.
QStringList items_of_chunk(const QStringList& row);

// What the header of a sampling run says while it goes on, and when it is over. `rate`: seconds, -1 for none.
inline const QString info_of_open_run = QStringLiteral("sample points");
QString info_of_run(int sweeps, bool has_positions, int rate);
// A sampling run has ended: its header gets the final text. A run that stored no line loses its header.
bool finish_sampling_log(database& db, int log_id, const QString& info);
bool delete_empty_sampling_log(database& db, int log_id);

} // namespace brivant
