#include "persistence/database.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "persistence/database_schema.h"
#include "persistence/disk_reserve.h"
#include "persistence/run_mark.h"
#include "persistence/sqlite_connection.h"
#include "persistence/vehicle_photos.h"
#include <QFileInfo>
#include <QScopedValueRollback>
#include <limits>
#include <optional>

namespace brivant {

namespace {

constexpr int most_lines_in_log = 64;

const QString new_photo = QStringLiteral("-666");

bool is_id(const QString& text) {
    bool ok = false;
    text.toInt(&ok);
    return ok;
}

// A quote that is not doubled ends the value inside its statement.
bool has_lone_quote(const QString& value) {
    return QString(value).remove(QStringLiteral("''")).contains(QLatin1Char('\''));
}

} // namespace

bool database::delete_from_DB(const QString& sql) {
    int deleted = 0;
    const stored outcome =
        store(QStringLiteral("retrieve_from_DB::sqlite3_prepare_v2:: "), sql, {},
              [&deleted](const sqlite_connection& done) { deleted = done.changed_rows(); });
    if (outcome == stored::yes)
        console_log(fill(QStringLiteral("total count of deleted notes %d"), {QString::number(deleted)}));
    else if (outcome == stored::no)
        console_log(QStringLiteral("Coudlnt delet check rights of DB"));
    return outcome == stored::yes;
}

bool database::change(const std::function<bool(sqlite_connection&)>& work) {
    if (changing)
        return work(*changing);
    what_is_wrong.clear();
    std::optional<sqlite_connection> own;
    sqlite_connection& connection = for_change(own);
    const auto as_one = [&] {
        const QScopedValueRollback is_changing(changing, &connection);
        return work(connection);
    };
    if (!connection.is_open() || !connection.as_one(as_one)) {
        if (what_is_wrong.isEmpty()) // else `work` has told why
            note(connection.failure(), QStringLiteral("database::change:: "));
        return false;
    }
    what_is_wrong.clear();
    return true;
}

bool database::make_room() {
    return is_no_room && give_up_reserve(file);
}

int database::add_update_DB(const QStringList& values, const QString& this_table, const QString& this_id) {
    const QString log_text = QStringLiteral("add_update_DB::sqlite3_prepare_v2:: ");
    if (values.size() != 3 || refuse_lone_quote(log_text, values))
        return -1;
    if (this_id.isEmpty()) {
        const int new_id = insert(log_text, fill(QStringLiteral("INSERT INTO %@ (NAME, MODEL_YEAR, ENG_VOL) "
                                                                "VALUES ('%@', '%@', '%@')"),
                                                 {this_table, values[0], values[1], values[2]}));
        return new_id == 0 ? -1 : new_id;
    }
    const auto update =
        QStringLiteral("UPDATE %@ set NAME='%@' , MODEL_YEAR='%@' , ENG_VOL= '%@' WHERE VEH_ID = %@");
    if (!is_id(this_id))
        return -1;
    const stored outcome =
        store(log_text, fill(update, {this_table, values[0], values[1], values[2], this_id}));
    return outcome == stored::yes ? 1 : -1;
}

bool database::update_tableInDB2(const QStringList& fields, const QStringList& these_fields_vals,
                                 const QString& this_table, const QString& this_id_field,
                                 const QString& this_id) {
    if (fields.size() != these_fields_vals.size() || !is_id(this_id))
        return false;
    QString text = fill(QStringLiteral("UPDATE %@ set  "), {this_table});
    for (qsizetype i = 0; i < fields.size(); ++i)
        text += fill(i == 0 ? QStringLiteral("%@ = ? ") : QStringLiteral(", %@ = ? "), {fields[i]});
    text += fill(QStringLiteral(" WHERE %@ =?"), {this_id_field});

    const auto bind = [&](sqlite_statement& statement) {
        int position = 1;
        for (const QString& value : these_fields_vals) {
            if (!statement.bind(position++, value))
                return false;
        }
        return statement.bind(position, this_id.toInt());
    };
    return store(QStringLiteral("update_tableInDB2::sqlite3_prepare_v2 err:: "), text, bind) == stored::yes;
}

int database::add_2_LOG_DB(const QString& log_type, int veh_id, const QString& info) {
    const QString log_text = QStringLiteral("add_2_LOG_DB::sqlite3_prepare_v2:: ");
    if (refuse_lone_quote(log_text, {log_type, info}))
        return 0;
    return insert(log_text, fill(QStringLiteral("INSERT INTO LOGGIES (VEH_ID , LOG_TYPE, INFO) "
                                                "VALUES (%d,'%@', '%@')"),
                                 {QString::number(veh_id), log_type, info}));
}

int database::append_2_LOG_DB(const QString& chunk, const QString& this_GPS_data, int line_no, int log_id) {
    const QString log_text = QStringLiteral("append_2_LOG_DB::sqlite3_prepare_v2:: ");
    if (refuse_lone_quote(log_text, {chunk, this_GPS_data}))
        return 0;
    return insert(log_text, fill(QStringLiteral("INSERT INTO LOGGIES_DATA (LOG_ID, DATA, LINE_NUMBER,DATA2) "
                                                "VALUES (%d, '%@',%d, '%@')"),
                                 {QString::number(log_id), chunk, QString::number(line_no), this_GPS_data}));
}

void database::begin_lines() {
    lines_follow = std::make_unique<run_mark>(QFileInfo(file).path());
    lines_in_log = 0;
}

void database::end_lines() {
    lines_follow.reset();
    line_connection.reset();
    sqlite_connection connection(file, db_access::writing);
    if (connection.is_open())
        connection.end_log_ahead();
}

bool database::lines_are_coming() const {
    return run_mark::is_set(QFileInfo(file).path());
}

bool database::delete_a_DB_log(int log_id) {
    const QString id = QString::number(log_id);
    // The header stays while its chunks do, or nothing would show that they are there.
    if (delete_from_DB(fill(QStringLiteral("DELETE FROM LOGGIES_DATA where log_id=%d"), {id})) &&
        delete_from_DB(fill(QStringLiteral("DELETE FROM LOGGIES where log_id=%d"), {id})))
        return true;
    console_log(QStringLiteral("Failed deletein alog"));
    return false;
}

int database::do_update_vehicle_image(const QString& veh_id, const QImage& this_image,
                                      const QString& this_vehImageId) {
    const bool is_new_photo = this_vehImageId.contains(new_photo);
    if (!is_id(veh_id) || (!is_new_photo && !is_id(this_vehImageId)))
        return 0;
    const QByteArray tiff = tiff_of_photo(this_image);
    if (tiff.isNull() && !this_image.isNull()) {
        what_is_wrong =
            QStringLiteral("The photo cannot be stored: TIFF pictures need the Qt image format plug-ins.");
        return -1;
    }
    const QString sql =
        is_new_photo
            ? fill(QStringLiteral("INSERT OR REPLACE INTO VEH_IMAGES ( VEH_ID, IMG_NAME , PICY) "
                                  "VALUES ( %@,'cur_picy',?)"),
                   {veh_id})
            : fill(QStringLiteral("INSERT OR REPLACE INTO VEH_IMAGES (VEH_IMAGE_ID, VEH_ID, IMG_NAME , PICY) "
                                  "VALUES (%@, %@,'cur_picy',?)"),
                   {this_vehImageId, veh_id});
    // The log text names another operation.
    return insert(QStringLiteral("add_2_LOG_DB::sqlite3_prepare_v2:: "), sql,
                  [&tiff](sqlite_statement& statement) { return statement.bind(1, tiff); });
}

int database::insert(const QString& log_text, const QString& sql, const binder& bind) {
    qint64 row_id = 0;
    const stored outcome =
        store(log_text, sql, bind, [&row_id](const sqlite_connection& done) { row_id = done.last_row_id(); });
    if (outcome != stored::yes)
        return outcome == stored::not_prepared ? 0 : -1;
    if (row_id > 0 && row_id <= std::numeric_limits<int>::max())
        return static_cast<int>(row_id);
    // Ids have 32 bits; only a damaged file counts beyond.
    what_is_wrong = QStringLiteral("The database %1 is damaged: its rows have numbers that cannot be used. "
                                   "Put a sound copy in its place or move it away, for a new one to be made.")
                        .arg(file);
    console_log(log_text + what_is_wrong);
    return -1;
}

// That of the run is kept open: SQLite brings a write-ahead log that it has just opened to the disk twice,
// with its folder. After a failure, and where the file is another by now, it is opened anew.
sqlite_connection& database::for_change(std::optional<sqlite_connection>& own) {
    if (changing)
        return *changing;
    if (!lines_follow)
        return own.emplace(file, db_access::writing);
    if (!line_connection || line_connection->failure().code != SQLITE_OK || line_connection->has_moved())
        line_connection = std::make_unique<sqlite_connection>(file, db_access::appending);
    // Before a change, which then begins the log anew: whoever opens the file reads all of it.
    if (line_connection->is_open() && ++lines_in_log >= most_lines_in_log) {
        line_connection->empty_log();
        lines_in_log = 0;
    }
    return *line_connection;
}

database::stored database::store(const QString& log_text, const QString& sql, const binder& bind,
                                 const std::function<void(const sqlite_connection&)>& done) {
    std::optional<sqlite_connection> own;
    sqlite_connection& connection = for_change(own);
    if (!connection.is_open()) {
        note(connection.failure(), QStringLiteral("database::open:: "));
        return stored::no;
    }
    if (sql.contains(QLatin1String("DELETE"))) // nothing else has a trigger of this program
        let_own_triggers_run(connection);
    sqlite_statement statement(connection, sql);
    if (!statement.is_prepared()) {
        note(connection.failure(), log_text);
        return stored::not_prepared;
    }
    sqlite_statement::stepped state = sqlite_statement::stepped::failed;
    if (!bind || bind(statement)) {
        do {
            state = statement.step();
        } while (state == sqlite_statement::stepped::row);
    }
    if (state != sqlite_statement::stepped::done) {
        note(connection.failure(), QStringLiteral("database::step:: "));
        return stored::no;
    }
    if (done)
        done(connection);
    what_is_wrong.clear();
    return stored::yes;
}

bool database::refuse_lone_quote(const QString& log_text, const QStringList& values) {
    for (const QString& value : values) {
        if (!has_lone_quote(value))
            continue;
        const QString shown = value.size() > 60 ? value.first(60) + QStringLiteral("...") : value;
        what_is_wrong = QStringLiteral("\"%1\" cannot be stored because it holds an apostrophe ('): write it "
                                       "without one.")
                            .arg(shown);
        console_log(log_text + what_is_wrong);
        return true;
    }
    return false;
}

} // namespace brivant
