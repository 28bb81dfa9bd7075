#pragma once

#include "persistence/sqlite_connection.h"

#include <QStringList>
#include <memory>
#include <optional>

namespace brivant {

// The rows of a query one at a time, over any number of calls: the database stays open for reading meanwhile.
// For work in slices, between which the event loop runs. The statement cannot change anything.
class row_cursor {
public:
    row_cursor(const QString& database_path, const QString& sql);

    // The next row, one text a column, "" for NULL, none longer than `longest_text`; nothing at the end and
    // on failure.
    std::optional<QStringList> next(qsizetype longest_text = sqlite_statement::whole);
    // The same without copies, for reading many: false at the end and on failure.
    bool advance();
    // A column of the row that advance() went to, in UTF-8; it holds until the next one.
    QByteArrayView bytes(int column) const { return statement->bytes(column); }
    bool has_failed() const { return failed; }
    // Why, in SQLite's words.
    QString reason() const { return connection.failure().message; }

private:
    // While rows are read a slice at a time, a sampling run goes on storing its lines.
    class shared_file {
    public:
        explicit shared_file(const QString& database_path);
        ~shared_file();

    private:
        const QString path;
    };

    shared_file sharing; // outlives the reading
    sqlite_connection connection;
    std::unique_ptr<sqlite_statement> statement;
    bool failed = false;
};

} // namespace brivant
