#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <limits>
#include <optional>
#include <sqlite3.h>

namespace brivant {

// Why something in the database was refused. `code` is a primary SQLite result code, or one of the codes
// below that SQLite has no name for.
struct sqlite_failure {
    static constexpr int newer_database = 1000; // made by a newer version of this program
    static constexpr int not_a_file = 1001;     // a folder, a pipe or a device stands at the path
    static constexpr int incomplete = 1002;     // a database, but without the tables of this program
    static constexpr int foreign = 1003;        // a table of this program's name runs something of another's
    int code = SQLITE_OK;
    QString message;
};

enum class db_access {
    reading,  // nothing can be changed, whatever the statement says
    writing,  // refused for a read-only file and for a newer database
    creating, // as writing, and the file is made when it is missing
    // As writing, for one of many small changes that follow each other. Each is on the disk when it is done,
    // at the cost of one flush, and none waits for a reader or keeps one out: SQLite's write-ahead log, which
    // stays beside the file between the changes, whatever becomes of the program.
    appending,
};

// One opened database file; closed with the object. A file from elsewhere is not trusted: no value larger
// than 64 MiB is read or written, triggers, views and functions that the file brings along do not run, a file
// whose tables would run something is not opened, and no step of a statement goes on without end. A lock of
// another program is waited for a quarter of a second, since all this is on the main thread.
class sqlite_connection {
public:
    static constexpr int largest_value = 64 * 1024 * 1024;
    // What a step may take of the processor: far more than ten million stored sweeps need.
    static constexpr int opening_ms = 2000;
    static constexpr int reading_ms = 5000;
    static constexpr int writing_ms = 60000;

    sqlite_connection(const QString& path, db_access access);
    ~sqlite_connection();
    Q_DISABLE_COPY_MOVE(sqlite_connection)

    bool is_open() const { return db != nullptr; }
    // Runs the first statement of `sql` to its end and drops its rows. False when it fails.
    bool execute(const QString& sql);
    // Whoever reads for long lets others write meanwhile, by the write-ahead log.
    void keep_log_ahead() { execute(QStringLiteral("PRAGMA journal_mode=WAL")); }
    // What the write-ahead log holds goes into the file, as far as readers allow; the log then starts anew.
    void empty_log() { execute(QStringLiteral("PRAGMA wal_checkpoint(PASSIVE)")); }
    // Back to one plain file that can be copied and read anywhere; nothing while somebody else has it open.
    void end_log_ahead();
    // Copies the database as it stands into a new file, which is there whole or not at all.
    bool copy_to(const QString& path);
    // A step that takes longer is broken off with SQLITE_INTERRUPT.
    void let_steps_take(int ms) { longest_step_ms = ms; }
    bool in_transaction() const { return sqlite3_get_autocommit(db) == 0; }
    // What `work` changes is changed as a whole when it gives true, else not at all.
    bool as_one(const std::function<bool()>& work);
    // For whoever knows what triggers the file has.
    void let_triggers_run() { sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_TRIGGER, 1, nullptr); }
    // Another file stands at the path by now, or none.
    bool has_moved() const;
    qint64 last_row_id() const { return sqlite3_last_insert_rowid(db); }
    int changed_rows() const { return sqlite3_changes(db); }
    // The last refusal of this connection or one of its statements.
    const sqlite_failure& failure() const { return last_failure; }

private:
    friend class sqlite_statement;
    bool open(const QString& path, db_access access);
    bool is_writable();
    bool can_be_read();
    bool is_own();
    bool open_as_it_stands(const QString& path);
    void prepare_for_appending();
    void distrust_file();
    static int is_over_time(void* connection);
    bool fail();
    bool fail(int code, const QString& message);

    sqlite3* db = nullptr;
    sqlite_failure last_failure;
    int longest_step_ms = opening_ms;
    std::optional<qint64> step_began_ms; // none until the step takes long enough to be looked at
};

// A prepared statement of an open connection, which must outlive it. Only the first statement of the text is
// prepared: what stands behind it, brought in by a spliced value, never runs.
class sqlite_statement {
public:
    enum class stepped { row, done, failed };

    sqlite_statement(sqlite_connection& opened, const QString& sql);
    ~sqlite_statement() { sqlite3_finalize(statement); }
    Q_DISABLE_COPY_MOVE(sqlite_statement)

    bool is_prepared() const { return statement != nullptr; }
    // Positions count from 1; false when the place does not exist or the value is too large.
    bool bind(int position, const QString& text);
    bool bind(int position, qint64 number);
    bool bind(int position, const QByteArray& blob); // null bytes bind NULL

    stepped step();
    void reset() { sqlite3_reset(statement); } // to be bound and stepped anew
    int columns() const { return sqlite3_column_count(statement); }
    // Columns count from 0. A NULL is the empty text, and a text longer than `longest` ends with "...".
    static constexpr qsizetype whole = std::numeric_limits<int>::max();
    QString text(int column, qsizetype longest = whole) const;
    QStringList texts(qsizetype longest = whole) const; // of all columns
    // The same without a copy, in UTF-8; it holds until the next step.
    QByteArrayView bytes(int column) const;
    QByteArray blob(int column) const;

private:
    bool accepted(int code);

    sqlite_connection& connection;
    sqlite3_stmt* statement = nullptr;
};

} // namespace brivant
