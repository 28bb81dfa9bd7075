#pragma once

#include "persistence/sqlite_connection.h"

namespace brivant {

// The tables, and what older versions of the program lack. Both functions change everything or nothing, log
// what fails, and return false then; the connection's failure says why.

// True for a database without any table.
bool is_empty(sqlite_connection& connection);
// Keeps a copy of it, "NAME before DATE.db", when migrate_schema() is going to change tables that are there.
// False when the copy cannot be made.
bool keep_copy_before_migration(sqlite_connection& connection, const QString& file);
// Makes the tables of a new database and its first vehicle. The maker-specific codes come at the next start.
bool create_schema(sqlite_connection& connection);
// Adds to an existing database the tables and columns that came later.
bool migrate_schema(sqlite_connection& connection);
// Makes the table of the photos when it is missing.
bool create_photo_table(sqlite_connection& connection);
// Makes what this program keeps beside the tables, within a transaction of the caller.
bool add_own_schema(sqlite_connection& connection);
// With a log its raw replies, moments, marks and positions go, by triggers, which hold for other programs
// too. Triggers of the file run only where it has no others than these, letter for letter.
void let_own_triggers_run(sqlite_connection& connection);

} // namespace brivant
