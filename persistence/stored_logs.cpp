#include "persistence/stored_logs.h"

#include "base/string_table.h"
#include "obd/reply_text.h"
#include "persistence/log_files.h"

namespace brivant {

std::optional<log_header> log_header_of(const QStringList& row) {
    bool has_id = false;
    bool has_vehicle = false;
    const log_header header{row.value(0).toInt(&has_id), row.value(1).toInt(&has_vehicle), row.value(2),
                            row.value(3), row.value(4)};
    return has_id && has_vehicle ? std::optional(header) : std::nullopt;
}

std::optional<log_header> log_with_id(database& db, int log_id) {
    const auto query = QStringLiteral("SELECT * FROM LOGGIES WHERE LOG_ID=%d");
    return log_header_of(
        db.retrieve_from_DB(fill(query, {QString::number(log_id)}), database::listed).value(0));
}

QString chunks_statement(int log_id) {
    return fill(QStringLiteral("SELECT * FROM LOGGIES_DATA WHERE LOG_ID=%d"), {QString::number(log_id)});
}

QStringList items_of_chunk(const QStringList& row) {
    return Pull_line_into_array(row.value(chunk_data), QStringLiteral(","));
}

QString info_of_run(int sweeps, bool has_positions, int rate) {
    return fill(QStringLiteral("%d Sample points %@ %@"),
                {QString::number(sweeps), has_positions ? QStringLiteral("  +GPS") : QString(),
                 rate == -1 ? QString() : fill(QStringLiteral(": %d sec rate"), {QString::number(rate)})});
}

bool finish_sampling_log(database& db, int log_id, const QString& info) {
    return db.update_tableInDB2({QStringLiteral("INFO")}, {info}, QStringLiteral("LOGGIES "),
                                QStringLiteral("LOG_ID"), QString::number(log_id));
}

bool delete_empty_sampling_log(database& db, int log_id) {
    return db.delete_from_DB(
        fill(QStringLiteral("DELETE FROM LOGGIES WHERE LOG_ID=%d"), {QString::number(log_id)}));
}

} // namespace brivant
