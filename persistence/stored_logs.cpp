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
    return log_header_of(db.retrieve_from_DB(fill(query, {QString::number(log_id)})).value(0));
}

QString chunks_statement(int log_id) {
    return fill(QStringLiteral("SELECT * FROM LOGGIES_DATA WHERE LOG_ID=%d"), {QString::number(log_id)});
}

QStringList items_of_chunk(const QStringList& row) {
    return Pull_line_into_array(row.value(chunk_data), QStringLiteral(","));
}

QString export_file_name(const log_header& log, bool as_txt) {
    const QString name = fill(QStringLiteral("%@_%@"),
                              {gmt_date_str_2_local_date_str(log.time_stamp).replace(u' ', u'_'), log.type});
    return QString(name).replace(u':', u'_').replace(u'/', u'_') + QLatin1String(as_txt ? ".txt" : ".csv");
}

QString info_of_run(int sweeps, bool has_positions, int rate) {
    return fill(QStringLiteral("%d Sample points %@ %@"),
                {QString::number(sweeps), has_positions ? QStringLiteral("  +GPS") : QString(),
                 rate == -1 ? QString() : fill(QStringLiteral(": %d sec rate"), {QString::number(rate)})});
}

void finish_cut_runs(database& db) {
    if (db.lines_are_coming())
        return;
    // A header without a line may be that of a run which begins just now.
    const auto cut_short =
        QStringLiteral("SELECT LOG_ID, time_stamp < datetime('now', '-1 hour') FROM LOGGIES "
                       "WHERE INFO='%1'");
    // A line of "~" alone is a gap.
    const auto count = QStringLiteral("SELECT COUNT(*), TOTAL(DATA GLOB '*[^~,]*'), MAX(DATA2 <> '') "
                                      "FROM LOGGIES_DATA WHERE LOG_ID=%1");
    for (const QStringList& run : db.retrieve_from_DB(cut_short.arg(info_of_open_run))) {
        const int log_id = run.value(0).toInt();
        const QStringList lines = db.retrieve_from_DB(count.arg(log_id)).value(0);
        const bool has_lines = lines.value(0).toLongLong() > 0;
        if (has_lines)
            finish_sampling_log(db, log_id,
                                info_of_run(static_cast<int>(lines.value(1).toDouble()),
                                            lines.value(2) == QLatin1String("1"), -1));
        else if (!lines.isEmpty() && run.value(1) == QLatin1String("1"))
            delete_empty_sampling_log(db, log_id);
    }
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
