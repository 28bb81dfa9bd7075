#include "persistence/stored_moments.h"

#include "base/string_table.h"
#include "formats/timed_csv_reader.h"
#include "persistence/sqlite_connection.h"

#include <cmath>

namespace brivant {

namespace {

constexpr qsizetype most_columns = timed_csv_reader::most_columns; // of a run that is imported

QString number(double value) {
    return std::isnan(value) ? QString() : QString::number(value, 'f', 2);
}

std::optional<double> time_in(const QString& text) {
    bool ok = false;
    const double ms = text.toDouble(&ok);
    return ok && ms >= 0 && ms < longest_run_ms ? std::optional(ms) : std::nullopt;
}

bool insert(database& db, const QString& sql, const std::function<bool(sqlite_statement&)>& bind) {
    return db.change([&](sqlite_connection& connection) {
        sqlite_statement statement(connection, sql);
        return statement.is_prepared() && bind(statement) &&
               statement.step() == sqlite_statement::stepped::done;
    });
}

} // namespace

bool store_run_start(database& db, int log_id, qint64 utc_ms) {
    return insert(db, QStringLiteral("INSERT INTO BV_RUNS (LOG_ID, STARTED_UTC_MS) VALUES (?, ?)"),
                  [&](sqlite_statement& row) { return row.bind(1, log_id) && row.bind(2, utc_ms); });
}

bool store_moment(database& db, int log_id, int line_no, const sweep_moment& when) {
    QStringList offsets;
    for (const double offset : when.offsets)
        offsets += number(offset);
    return insert(
        db,
        QStringLiteral(
            "INSERT INTO BV_MOMENTS (LOG_ID, LINE_NUMBER, MILLISECONDS, OFFSETS) VALUES (?, ?, ?, ?)"),
        [&](sqlite_statement& row) {
            return row.bind(1, log_id) && row.bind(2, line_no) && row.bind(3, number(when.ms)) &&
                   row.bind(4, offsets.join(u','));
        });
}

std::optional<qint64> start_of_run(database& db, int log_id) {
    if (db.retrieve_from_DB(QStringLiteral("SELECT 1 FROM sqlite_master WHERE name='BV_RUNS'")).isEmpty())
        return std::nullopt;
    const auto sql = QStringLiteral("SELECT STARTED_UTC_MS FROM BV_RUNS WHERE LOG_ID=%d");
    bool ok = false;
    const qint64 utc_ms =
        db.retrieve_from_DB(fill(sql, {QString::number(log_id)})).value(0).value(0).toLongLong(&ok);
    return ok && utc_ms >= 0 && utc_ms < latest_start_ms ? std::optional(utc_ms) : std::nullopt;
}

QString timed_chunks_statement(int log_id, const QString& more_columns, const QString& more_tables) {
    return QStringLiteral("SELECT d.LOG_ID, d.DATA, d.LINE_NUMBER, d.time_stamp, d.DATA2, m.MILLISECONDS, "
                          "m.OFFSETS%2 FROM LOGGIES_DATA d LEFT JOIN BV_MOMENTS m ON m.LOG_ID=d.LOG_ID AND "
                          "m.LINE_NUMBER=d.LINE_NUMBER%3 WHERE d.LOG_ID=%1")
        .arg(QString::number(log_id), more_columns, more_tables);
}

std::optional<sweep_moment> moment_in(const QString& ms, const QString& offsets) {
    const auto began = time_in(ms);
    if (!began)
        return std::nullopt;
    sweep_moment when{*began, {}};
    for (const QStringView offset : QStringView(offsets).split(u',')) {
        if (when.offsets.size() >= most_columns)
            return std::nullopt;
        const auto its_time = time_in(offset.toString());
        if (!its_time && !offset.isEmpty())
            return std::nullopt;
        when.offsets += its_time.value_or(qQNaN());
    }
    return when;
}

} // namespace brivant
