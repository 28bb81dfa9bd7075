#include "persistence/database_schema.h"

#include "base/console_log.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace brivant {

namespace {

// clang-format off
const auto create_vehicles   = QStringLiteral("CREATE TABLE IF NOT EXISTS VEHICLES (VEH_ID INTEGER PRIMARY KEY AUTOINCREMENT, NAME TEXT, MODEL_YEAR TEXT, ENG_VOL TEXT, time_stamp DATETIME Default CURRENT_TIMESTAMP, XTRA_INFO TEXT)");
const auto create_photos     = QStringLiteral("CREATE TABLE IF NOT EXISTS VEH_IMAGES (VEH_IMAGE_ID INTEGER PRIMARY KEY AUTOINCREMENT, VEH_ID INTEGER ,IMG_NAME TEXT, PICY BLOB, INFO TEXT, time_stamp DATETIME Default CURRENT_TIMESTAMP)");
const auto create_logs       = QStringLiteral("CREATE TABLE IF NOT EXISTS LOGGIES (LOG_ID INTEGER PRIMARY KEY AUTOINCREMENT, VEH_ID INTEGER , LOG_TYPE TEXT, INFO TEXT, time_stamp DATETIME Default CURRENT_TIMESTAMP)");
const auto create_log_chunks = QStringLiteral("CREATE TABLE IF NOT EXISTS LOGGIES_DATA (LOG_ID INTEGER ,  DATA TEXT,  LINE_NUMBER INTEGER, time_stamp DATETIME Default CURRENT_TIMESTAMP, DATA2 TEXT)");
const auto create_codes      = QStringLiteral("CREATE TABLE IF NOT EXISTS P1_CODES (ID INTEGER PRIMARY KEY AUTOINCREMENT, MAKER TEXT , PCODE TEXT, DESCRIPTION TEXT, GRUPO TEXT, time_stamp DATETIME Default CURRENT_TIMESTAMP)");
const auto seed_vehicle      = QStringLiteral("INSERT INTO VEHICLES (NAME, MODEL_YEAR, ENG_VOL) VALUES (\"Cur Veh.\", \"2012\", \"3.0 lts.\")");
const auto probe_vehicles    = QStringLiteral("SELECT * FROM VEHICLES ");
const auto probe_pid_record  = QStringLiteral("SELECT XTRA_INFO FROM VEHICLES ");
const auto probe_logs        = QStringLiteral("SELECT LOGGIES_DATA.DATA, VEHICLES.NAME FROM LOGGIES_DATA, VEHICLES");
const auto add_pid_record    = QStringLiteral("ALTER TABLE VEHICLES ADD COLUMN 'XTRA_INFO' TEXT default NULL");
const auto probe_gps         = QStringLiteral("SELECT DATA2 FROM   LOGGIES_DATA ");
const auto add_gps           = QStringLiteral("ALTER TABLE LOGGIES_DATA ADD COLUMN 'DATA2' TEXT");
const auto create_replies    = QStringLiteral("CREATE TABLE IF NOT EXISTS BV_REPLIES (LOG_ID INTEGER NOT NULL, SEQUENCE INTEGER NOT NULL, REQUEST TEXT NOT NULL, REPLY TEXT NOT NULL, PROTOCOL INTEGER NOT NULL, HEADERS_SHOWN INTEGER NOT NULL, MILLISECONDS INTEGER NOT NULL, PRIMARY KEY (LOG_ID, SEQUENCE))");
const auto forget_replies    = QStringLiteral("BV_FORGET_REPLIES AFTER DELETE ON LOGGIES BEGIN DELETE FROM BV_REPLIES WHERE LOG_ID = OLD.LOG_ID; END");
const auto create_runs       = QStringLiteral("CREATE TABLE IF NOT EXISTS BV_RUNS (LOG_ID INTEGER PRIMARY KEY, STARTED_UTC_MS INTEGER NOT NULL)");
const auto create_moments    = QStringLiteral("CREATE TABLE IF NOT EXISTS BV_MOMENTS (LOG_ID INTEGER NOT NULL, LINE_NUMBER INTEGER NOT NULL, MILLISECONDS REAL NOT NULL, OFFSETS TEXT NOT NULL, PRIMARY KEY (LOG_ID, LINE_NUMBER)) WITHOUT ROWID");
const auto forget_run        = QStringLiteral("BV_FORGET_RUN AFTER DELETE ON LOGGIES BEGIN DELETE FROM BV_RUNS WHERE LOG_ID = OLD.LOG_ID; END");
const auto forget_moment     = QStringLiteral("BV_FORGET_MOMENT AFTER DELETE ON LOGGIES_DATA BEGIN DELETE FROM BV_MOMENTS WHERE LOG_ID = OLD.LOG_ID AND LINE_NUMBER = OLD.LINE_NUMBER; END");
const auto create_marks      = QStringLiteral("CREATE TABLE IF NOT EXISTS BV_MARKS (LOG_ID INTEGER NOT NULL, MILLISECONDS REAL NOT NULL, TEXT TEXT NOT NULL, PRIMARY KEY (LOG_ID, MILLISECONDS, TEXT)) WITHOUT ROWID");
const auto forget_marks      = QStringLiteral("BV_FORGET_MARKS AFTER DELETE ON LOGGIES BEGIN DELETE FROM BV_MARKS WHERE LOG_ID = OLD.LOG_ID; END");
const auto create_positions  = QStringLiteral("CREATE TABLE IF NOT EXISTS BV_POSITIONS (LOG_ID INTEGER NOT NULL, LINE_NUMBER INTEGER NOT NULL, OFFSET_MS REAL NOT NULL, LATITUDE REAL NOT NULL, LONGITUDE REAL NOT NULL, ALTITUDE REAL, SPEED REAL, TRACK REAL, ERROR REAL, PRIMARY KEY (LOG_ID, LINE_NUMBER)) WITHOUT ROWID");
const auto forget_position   = QStringLiteral("BV_FORGET_POSITION AFTER DELETE ON LOGGIES_DATA BEGIN DELETE FROM BV_POSITIONS WHERE LOG_ID = OLD.LOG_ID AND LINE_NUMBER = OLD.LINE_NUMBER; END");
const auto create_exports    = QStringLiteral("CREATE TABLE IF NOT EXISTS BV_EXPORTS (NAME TEXT NOT NULL, NUMBER INTEGER NOT NULL, LOG_ID INTEGER NOT NULL, PRIMARY KEY (NAME, NUMBER)) WITHOUT ROWID");
const auto index_chunks      = QStringLiteral("CREATE INDEX IF NOT EXISTS BV_CHUNKS_OF_LOG ON LOGGIES_DATA (LOG_ID)");
// clang-format on

const QStringList own_triggers{forget_replies, forget_run, forget_moment, forget_marks, forget_position};

bool required(sqlite_connection& connection, const QString& sql) {
    if (connection.execute(sql))
        return true;
    console_log(QStringLiteral("Error:") + connection.failure().message);
    return false;
}

bool has_vehicle(sqlite_connection& connection) {
    sqlite_statement vehicles(connection, probe_vehicles);
    return vehicles.is_prepared() && vehicles.step() == sqlite_statement::stepped::row;
}

bool fill_new_database(sqlite_connection& connection) {
    if (!required(connection, create_vehicles))
        return false;
    // A second program that starts at the same moment finds the first one's vehicle.
    if (!has_vehicle(connection) && !required(connection, seed_vehicle))
        return false;
    return required(connection, create_photos) && required(connection, create_logs) &&
           required(connection, create_log_chunks);
}

bool add_what_is_missing(sqlite_connection& connection) {
    if (!required(connection, create_photos))
        return false;
    // There is no test for the column: adding it again is what normally fails here.
    if (!connection.execute(add_pid_record))
        console_log(QStringLiteral("Error/warning adding loggies.xtra_info:") + connection.failure().message);
    if (!connection.in_transaction())
        return false; // more than a column that stands already: SQLite has given the transaction up
    // Preparing the probe tells whether the column is there without reading gigabytes of logs.
    if (!sqlite_statement(connection, probe_gps).is_prepared() && !required(connection, add_gps))
        return false;
    return required(connection, create_codes);
}

bool is_accepted(sqlite_connection& connection, const QString& sql) {
    return sqlite_statement(connection, sql).is_prepared();
}

bool lacks_columns(sqlite_connection& connection) {
    return is_accepted(connection, probe_logs) &&
           !(is_accepted(connection, probe_gps) && is_accepted(connection, probe_pid_record));
}

} // namespace

bool is_empty(sqlite_connection& connection) {
    sqlite_statement tables(connection, QStringLiteral("SELECT 1 FROM sqlite_master"));
    return tables.is_prepared() && tables.step() == sqlite_statement::stepped::done;
}

bool keep_copy_before_migration(sqlite_connection& connection, const QString& file) {
    if (!lacks_columns(connection))
        return true;
    const QFileInfo place(file);
    const QString copy =
        place.dir().filePath(QStringLiteral("%1 before %2.db")
                                 .arg(place.completeBaseName(), QDate::currentDate().toString(Qt::ISODate)));
    return QFileInfo::exists(copy) || connection.copy_to(copy);
}

bool create_schema(sqlite_connection& connection) {
    return connection.as_one([&] { return fill_new_database(connection); });
}

bool migrate_schema(sqlite_connection& connection) {
    return connection.as_one([&] { return add_what_is_missing(connection); });
}

bool create_photo_table(sqlite_connection& connection) {
    return required(connection, create_photos);
}

bool add_own_schema(sqlite_connection& connection) {
    for (const QString& sql : {index_chunks, create_replies, create_runs, create_moments, create_marks,
                               create_positions, create_exports}) {
        if (!required(connection, sql))
            return false;
    }
    return std::all_of(own_triggers.begin(), own_triggers.end(), [&connection](const QString& trigger) {
        return required(connection, QStringLiteral("CREATE TRIGGER IF NOT EXISTS ") + trigger);
    });
}

void let_own_triggers_run(sqlite_connection& connection) {
    sqlite_statement foreign(connection,
                             QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='trigger' AND "
                                            "COALESCE(sql, '') NOT IN (?, ?, ?, ?, ?)"));
    bool is_bound = foreign.is_prepared();
    for (int i = 0; i < own_triggers.size(); ++i)
        is_bound = is_bound && foreign.bind(i + 1, QStringLiteral("CREATE TRIGGER ") + own_triggers.at(i));
    if (is_bound && foreign.step() == sqlite_statement::stepped::done)
        connection.let_triggers_run();
}

} // namespace brivant
