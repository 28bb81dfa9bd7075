#pragma once

#include "base/console_log.h"
#include "persistence/database.h"
#include "tests/support/folder_in_memory.h"
#include "tests/support/other_program.h"
#include "tests/support/test_file.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

// A Documents folder of its own with a database in it, the log lines written, and a second way into the file.
struct test_database {
    QTemporaryDir folder{folder_in_memory()};
    database db{folder.path()};

    test_database() { EXPECT_TRUE(redirect_console_log(folder.filePath("console.log"))); }
    ~test_database() { silence_console_log(); }

    QByteArray bytes() const { return bytes_of(db.path()); }
    QString log() const { return QString::fromUtf8(bytes_of(folder.filePath("console.log"))); }
    void write(const QByteArray& content) const { put_file(db.path(), content); }
    // Runs statements as another program would.
    void outside(const QByteArray& sql) const { other_program(db.path()).runs(sql); }
    // The first column of the query's rows, joined by blanks.
    QString column(const QString& sql) {
        QStringList texts;
        for (const QStringList& row : db.retrieve_from_DB(sql))
            texts += row.value(0);
        return texts.join(' ');
    }
    QString tables() {
        return column(
            "SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite%' ORDER BY name");
    }
};

} // namespace brivant
