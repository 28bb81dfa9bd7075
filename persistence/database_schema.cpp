#include "persistence/database_schema.h"

#include "base/console_log.h"

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
const auto add_pid_record    = QStringLiteral("ALTER TABLE VEHICLES ADD COLUMN 'XTRA_INFO' TEXT default NULL");
const auto probe_gps         = QStringLiteral("SELECT DATA2 FROM   LOGGIES_DATA ");
const auto add_gps           = QStringLiteral("ALTER TABLE LOGGIES_DATA ADD COLUMN 'DATA2' TEXT");
// clang-format on

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

bool all_or_nothing(sqlite_connection& connection, bool (*work)(sqlite_connection&)) {
    if (!required(connection, QStringLiteral("BEGIN IMMEDIATE")))
        return false;
    if (work(connection) && required(connection, QStringLiteral("COMMIT")))
        return true;
    if (connection.in_transaction())
        connection.execute(QStringLiteral("ROLLBACK"));
    return false;
}

} // namespace

bool create_schema(sqlite_connection& connection) {
    return all_or_nothing(connection, fill_new_database);
}

bool migrate_schema(sqlite_connection& connection) {
    return all_or_nothing(connection, add_what_is_missing);
}

bool create_photo_table(sqlite_connection& connection) {
    return required(connection, create_photos);
}

} // namespace brivant
