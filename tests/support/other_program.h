#pragma once

#include <QByteArray>
#include <QString>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace brivant {

// Another program that has a database file open, and its locks, as long as it lives.
class other_program {
public:
    explicit other_program(const QString& file) {
        EXPECT_EQ(sqlite3_open(file.toUtf8().constData(), &connection), SQLITE_OK);
    }
    ~other_program() { sqlite3_close(connection); }
    Q_DISABLE_COPY_MOVE(other_program)

    void runs(const QByteArray& sql) {
        EXPECT_EQ(sqlite3_exec(connection, sql.constData(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
    }

private:
    sqlite3* connection = nullptr;
};

} // namespace brivant
