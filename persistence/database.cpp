#include "persistence/database.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "persistence/database_problem.h"
#include "persistence/database_schema.h"
#include "persistence/disk_reserve.h"
#include "persistence/run_mark.h"
#include "persistence/sqlite_connection.h"
#include "persistence/vehicle_photos.h"
#include <QDir>
#include <QFileInfo>
#include <exception>
#include <optional>
#include <stdexcept>

namespace brivant {

namespace {

constexpr qint64 largest_result = 512LL * 1024 * 1024; // bytes of memory

// While the tables are made, a refused statement means that the file is a database of something else.
sqlite_failure as_incomplete(sqlite_failure failure) {
    if (failure.code == SQLITE_ERROR)
        failure.code = sqlite_failure::incomplete;
    return failure;
}

// What a text costs in memory, its own bookkeeping included.
qint64 memory_of(const QString& text) {
    return 2 * text.size() + 64;
}

} // namespace

database::database(const QString& documents_folder)
    : file(QDir(documents_folder).filePath(QStringLiteral("BV_loggies_lite.db"))) {}

database::~database() = default;

bool database::init_DB() {
    bool usable = false;
    {
        sqlite_connection connection(file,
                                     QFileInfo::exists(file) ? db_access::writing : db_access::creating);
        // A first start that was cut short, or found the disk full, leaves a file whose change SQLite has now
        // taken back.
        made_now = connection.is_open() && is_empty(connection);
        usable = connection.is_open() &&
                 (made_now ? create_schema(connection)
                           : keep_copy_before_migration(connection, file) && migrate_schema(connection));
        if (!usable)
            note(as_incomplete(connection.failure()), QStringLiteral("init_DB:: "));
    }
    if (usable && !made_now) {
        // The table of the photos is made a second time, on a connection of its own.
        sqlite_connection connection(file, db_access::writing);
        usable = connection.is_open() && create_photo_table(connection);
        if (usable && !lines_follow)
            connection.end_log_ahead(); // of a run that was cut short
        if (!usable)
            note(connection.failure(), QStringLiteral("init_DB:: "));
    }
    made_now = made_now && usable;
    if (usable)
        what_is_wrong.clear();
    return usable;
}

QList<QStringList> database::retrieve_from_DB(const QString& sql, qsizetype longest_text) {
    QList<QStringList> rows;
    if (sql.contains(QStringLiteral("DELETE"))) {
        delete_from_DB(sql);
        return rows;
    }
    try {
        qint64 memory = 0;
        const auto take = [&](const QStringList& row) {
            for (const QString& text : row)
                memory += memory_of(text);
            if (memory > largest_result)
                throw std::length_error("the result is too large; the rest of it is left out");
            rows.append(row);
            return true;
        };
        for_each_row(sql, take, longest_text);
    } catch (const std::exception& reason) {
        what_is_wrong = QString::fromUtf8(reason.what());
        console_log(QStringLiteral("retrieve_vehicles_from_DB::") + what_is_wrong);
    }
    return rows;
}

bool database::add_own_parts() {
    if (!change(add_own_schema))
        return false;
    keep_reserve(file);
    return true;
}

bool database::for_each_row(const QString& sql, const std::function<bool(const QStringList&)>& row,
                            qsizetype longest_text) {
    return read(QStringLiteral("retrieve_from_DB"), sql,
                [&](sqlite_statement& statement) { return row(statement.texts(longest_text)); });
}

bool database::read(const QString& operation, const QString& sql,
                    const std::function<bool(sqlite_statement&)>& row) {
    std::optional<sqlite_connection> own;
    sqlite_connection& connection = changing ? *changing : own.emplace(file, db_access::reading);
    if (!connection.is_open()) {
        note(connection.failure(), operation + QStringLiteral(":: "));
        return false;
    }
    sqlite_statement statement(connection, sql);
    if (!statement.is_prepared()) {
        note(connection.failure(), operation + QStringLiteral("::sqlite3_prepare_v2:: "));
        return false;
    }
    for (;;) {
        const sqlite_statement::stepped state = statement.step();
        if (state == sqlite_statement::stepped::failed)
            note(connection.failure(), QStringLiteral("retrieve_vehicles_from_DB::"));
        if (state != sqlite_statement::stepped::row || !row(statement))
            return state != sqlite_statement::stepped::failed;
    }
}

QString database::pull_rawData_fromDB(const QString& log_id, bool add_line_feed) {
    // The leading "-1" stands before the chunks too.
    QString text = QStringLiteral("-1");
    const auto query = QStringLiteral("SELECT * FROM LOGGIES_DATA where LOG_ID=%@ ORDER by time_stamp DESC ");
    try {
        for_each_row(fill(query, {QString::number(log_id.toInt())}), [&](const QStringList& row) {
            const QString chunk = row.value(1);
            if (memory_of(text) + memory_of(chunk) > largest_result)
                throw std::length_error("the log is too large; the rest of it is left out");
            text += chunk;
            if (add_line_feed)
                text += QLatin1Char('\n');
            return true;
        });
    } catch (const std::exception& reason) {
        what_is_wrong = QString::fromUtf8(reason.what());
    }
    return text;
}

QImage database::pull_veh_image(const QString& where_clause) {
    QImage photo;
    // The log text names another operation.
    read(QStringLiteral("add_2_LOG_DB"),
         fill(QStringLiteral("SELECT VEH_ID, PICY from VEH_IMAGES  WHERE  %@ "), {where_clause}),
         [&photo](sqlite_statement& statement) {
             photo = photo_of_tiff(statement.blob(1));
             return false;
         });
    return photo;
}

void database::note(const sqlite_failure& failure, const QString& log_text) {
    what_is_wrong = problem_sentence(file, failure);
    is_no_room = failure.code == SQLITE_FULL;
    console_log(log_text + failure.message);
}

} // namespace brivant
