#pragma once

#include "persistence/sqlite_connection.h"

#include <QStringList>
#include <memory>
#include <optional>

// The rows of a query one at a time, over any number of calls: the database stays open for reading meanwhile. For
// work in slices, between which the event loop runs. The statement cannot change anything.
class row_cursor {
public:
    row_cursor(const QString& database_path, const QString& sql);

    // The next row, one text a column, "" for NULL; nothing at the end and on failure.
    std::optional<QStringList> next();
    bool has_failed() const { return failed; }
    // Why, in SQLite's words.
    QString reason() const { return connection.failure().message; }

private:
    sqlite_connection connection;
    std::unique_ptr<sqlite_statement> statement;
    bool failed = false;
};
