#include "persistence/row_cursor.h"

namespace brivant {

row_cursor::shared_file::shared_file(const QString& database_path) : path(database_path) {
    sqlite_connection writer(path, db_access::writing);
    if (writer.is_open())
        writer.keep_log_ahead();
}

row_cursor::shared_file::~shared_file() {
    sqlite_connection writer(path, db_access::writing);
    if (writer.is_open())
        writer.end_log_ahead();
}

row_cursor::row_cursor(const QString& database_path, const QString& sql)
    : sharing(database_path), connection(database_path, db_access::reading) {
    if (connection.is_open())
        statement = std::make_unique<sqlite_statement>(connection, sql);
    failed = !statement || !statement->is_prepared();
}

bool row_cursor::advance() {
    if (failed || !statement)
        return false;
    const sqlite_statement::stepped outcome = statement->step();
    if (outcome == sqlite_statement::stepped::row)
        return true;
    failed = outcome == sqlite_statement::stepped::failed;
    statement.reset();
    return false;
}

std::optional<QStringList> row_cursor::next(qsizetype longest_text) {
    return advance() ? std::optional(statement->texts(longest_text)) : std::nullopt;
}

} // namespace brivant
