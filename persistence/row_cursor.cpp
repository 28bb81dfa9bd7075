#include "persistence/row_cursor.h"

row_cursor::row_cursor(const QString& database_path, const QString& sql)
    : connection(database_path, db_access::reading) {
    if (connection.is_open())
        statement = std::make_unique<sqlite_statement>(connection, sql);
    failed = !statement || !statement->is_prepared();
}

std::optional<QStringList> row_cursor::next() {
    if (failed || !statement)
        return std::nullopt;
    const sqlite_statement::stepped outcome = statement->step();
    if (outcome != sqlite_statement::stepped::row) {
        failed = outcome == sqlite_statement::stepped::failed;
        statement.reset();
        return std::nullopt;
    }
    QStringList texts;
    texts.reserve(statement->columns());
    for (int column = 0; column < statement->columns(); ++column)
        texts.append(statement->text(column));
    return texts;
}
