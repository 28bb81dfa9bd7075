#include "persistence/sqlite_connection.h"

#include "persistence/schema_check.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <ctime>

namespace brivant {

namespace {

constexpr int lock_patience_ms = 250;
// The schema of this program has the number 0, which is what a database without a number has.
constexpr int known_schema_version = 0;
constexpr int instructions_between_looks = 10'000; // well under a millisecond

// Of this thread, so that a slow disk does not count.
qint64 processor_ms() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

} // namespace

sqlite_connection::sqlite_connection(const QString& path, db_access access) {
    if (!open(path, access)) {
        sqlite3_close(db);
        db = nullptr;
    }
}

sqlite_connection::~sqlite_connection() {
    sqlite3_close(db);
}

bool sqlite_connection::open(const QString& path, db_access access) {
    const QFileInfo place(path);
    if (place.exists() && !place.isFile())
        return fail(sqlite_failure::not_a_file, QStringLiteral("not a file: %1").arg(path));

    const int flags = SQLITE_OPEN_READWRITE | (access == db_access::creating ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, flags, nullptr) != SQLITE_OK)
        return fail();
    sqlite3_busy_timeout(db, lock_patience_ms);
    distrust_file();
    // A reader too opens the file for writing where it may: only so can SQLite undo what a crash left half
    // done.
    if (access == db_access::reading) {
        if ((!can_be_read() && !open_as_it_stands(path)) || !is_own())
            return false;
        longest_step_ms = reading_ms;
        return execute(QStringLiteral("PRAGMA query_only=1"));
    }
    if (!is_writable() || !is_own())
        return false;
    longest_step_ms = writing_ms;
    if (access == db_access::appending)
        prepare_for_appending();
    return true;
}

bool sqlite_connection::can_be_read() {
    sqlite_statement probe(*this, QStringLiteral("PRAGMA schema_version"));
    return probe.is_prepared() && probe.step() == sqlite_statement::stepped::row;
}

bool sqlite_connection::is_own() {
    const std::optional<QString> other = table_that_runs_something(*this);
    if (!other || other->isEmpty())
        return other.has_value();
    return fail(sqlite_failure::foreign, QStringLiteral("%1 is no plain table").arg(*other));
}

// A copy of a database that was in use has the write-ahead log switched on, which needs a file more beside
// it. Where none can be made nobody writes, unless somebody else's log is there.
bool sqlite_connection::open_as_it_stands(const QString& path) {
    if (last_failure.code != SQLITE_CANTOPEN && last_failure.code != SQLITE_READONLY)
        return false;
    if (QFileInfo(path + QStringLiteral("-wal")).size() > 0)
        return false;
    sqlite3_close(db);
    const QByteArray uri =
        QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toEncoded() + "?immutable=1";
    if (sqlite3_open_v2(uri.constData(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr) != SQLITE_OK)
        return fail();
    distrust_file();
    return can_be_read();
}

// A log that cannot be kept (a file system without shared memory) leaves the slower rollback journal, which
// is as safe.
void sqlite_connection::prepare_for_appending() {
    // Emptying the log at each closing would cost two flushes more; database does it now and then.
    sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    execute(QStringLiteral("PRAGMA synchronous=FULL"));
    keep_log_ahead();
}

void sqlite_connection::end_log_ahead() {
    sqlite3_busy_timeout(db, 0);
    execute(QStringLiteral("PRAGMA journal_mode=DELETE"));
    sqlite3_busy_timeout(db, lock_patience_ms);
}

bool sqlite_connection::is_writable() {
    {
        sqlite_statement version(*this, QStringLiteral("PRAGMA user_version"));
        if (!version.is_prepared() || version.step() != sqlite_statement::stepped::row)
            return false;
        if (version.text(0).toLongLong() > known_schema_version)
            return fail(sqlite_failure::newer_database,
                        QStringLiteral("schema version %1").arg(version.text(0)));
    }
    if (sqlite3_db_readonly(db, "main") == 1)
        return fail(SQLITE_READONLY, QStringLiteral("attempt to write a readonly database"));
    return true;
}

int sqlite_connection::is_over_time(void* connection) {
    auto& self = *static_cast<sqlite_connection*>(connection);
    const qint64 now = processor_ms();
    return now - *(self.step_began_ms = self.step_began_ms.value_or(now)) > self.longest_step_ms ? 1 : 0;
}

void sqlite_connection::distrust_file() {
    sqlite3_progress_handler(db, instructions_between_looks, &sqlite_connection::is_over_time, this);
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, largest_value);
    sqlite3_limit(db, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100); // a match is one instruction, however long
    sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // The default vehicle's values stand in double quotes, which some builds of SQLite refuse by default.
    sqlite3_db_config(db, SQLITE_DBCONFIG_DQS_DML, 1, nullptr);
}

bool sqlite_connection::execute(const QString& sql) {
    sqlite_statement statement(*this, sql);
    if (!statement.is_prepared())
        return false;
    sqlite_statement::stepped state;
    do {
        state = statement.step();
    } while (state == sqlite_statement::stepped::row);
    return state == sqlite_statement::stepped::done;
}

bool sqlite_connection::as_one(const std::function<bool()>& work) {
    if (!execute(QStringLiteral("BEGIN IMMEDIATE")))
        return false;
    if (work() && execute(QStringLiteral("COMMIT")))
        return true;
    if (in_transaction()) // else SQLite has given it up itself
        execute(QStringLiteral("ROLLBACK"));
    return false;
}

bool sqlite_connection::copy_to(const QString& path) {
    const QString part = path + QStringLiteral(".part");
    QFile::remove(part);
    sqlite3* copy = nullptr;
    int code = sqlite3_open_v2(QFile::encodeName(part).constData(), &copy,
                               SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (sqlite3_backup* backup =
            code == SQLITE_OK ? sqlite3_backup_init(copy, "main", db, "main") : nullptr) {
        sqlite3_backup_step(backup, -1);
        code = sqlite3_backup_finish(backup);
    }
    const QString why = QString::fromUtf8(sqlite3_errmsg(copy));
    sqlite3_close(copy);
    if (code == SQLITE_OK && QFile::rename(part, path))
        return true;
    QFile::remove(part);
    return fail(code == SQLITE_OK ? SQLITE_IOERR : code & 0xff, why);
}

bool sqlite_connection::has_moved() const {
    int moved = 0;
    return sqlite3_file_control(db, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

bool sqlite_connection::fail() {
    return fail(sqlite3_errcode(db) & 0xff, QString::fromUtf8(sqlite3_errmsg(db)));
}

bool sqlite_connection::fail(int code, const QString& message) {
    last_failure = {code, message};
    return false;
}

sqlite_statement::sqlite_statement(sqlite_connection& opened, const QString& sql) : connection(opened) {
    const QByteArray text = sql.toUtf8();
    connection.step_began_ms.reset(); // the schema is read here
    if (text.size() > sqlite_connection::largest_value)
        connection.fail(SQLITE_TOOBIG, QStringLiteral("statement too long"));
    else
        accepted(sqlite3_prepare_v2(connection.db, text.constData(), static_cast<int>(text.size()),
                                    &statement, nullptr));
}

bool sqlite_statement::accepted(int code) {
    return code == SQLITE_OK || connection.fail();
}

bool sqlite_statement::bind(int position, const QString& value) {
    const QByteArray bytes = value.toUtf8();
    return accepted(sqlite3_bind_text64(statement, position, bytes.constData(),
                                        static_cast<sqlite3_uint64>(bytes.size()), SQLITE_TRANSIENT,
                                        SQLITE_UTF8));
}

bool sqlite_statement::bind(int position, qint64 number) {
    return accepted(sqlite3_bind_int64(statement, position, number));
}

bool sqlite_statement::bind(int position, const QByteArray& bytes) {
    return accepted(sqlite3_bind_blob64(statement, position, bytes.isNull() ? nullptr : bytes.constData(),
                                        static_cast<sqlite3_uint64>(bytes.size()), SQLITE_TRANSIENT));
}

sqlite_statement::stepped sqlite_statement::step() {
    connection.step_began_ms.reset();
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW)
        return stepped::row;
    if (code == SQLITE_DONE)
        return stepped::done;
    connection.fail();
    return stepped::failed;
}

QString sqlite_statement::text(int column, qsizetype longest) const {
    constexpr qsizetype bytes_a_character = 3; // at most, where the character is one of QString's
    const QByteArrayView all = bytes(column);
    if (all.size() <= longest)
        return QString::fromUtf8(all);
    const QString text =
        QString::fromUtf8(all.first(std::min(all.size(), bytes_a_character * (longest + 1))));
    return text.size() <= longest ? text : text.first(longest) + QLatin1String("...");
}

QStringList sqlite_statement::texts(qsizetype longest) const {
    QStringList all;
    all.reserve(columns());
    for (int column = 0; column < columns(); ++column)
        all.append(text(column, longest));
    return all;
}

QByteArrayView sqlite_statement::bytes(int column) const {
    // The text is asked for before its size: reading it may convert the value.
    const unsigned char* text = sqlite3_column_text(statement, column);
    return {reinterpret_cast<const char*>(text), sqlite3_column_bytes(statement, column)};
}

QByteArray sqlite_statement::blob(int column) const {
    const void* bytes = sqlite3_column_blob(statement, column);
    return QByteArray(static_cast<const char*>(bytes), sqlite3_column_bytes(statement, column));
}

} // namespace brivant
