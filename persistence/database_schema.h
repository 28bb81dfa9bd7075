#pragma once

#include "persistence/sqlite_connection.h"

namespace brivant {

// The tables, and what older versions of the program lack. Both functions change everything or nothing, log
// what fails, and return false then; the connection's failure says why.

// Makes the tables of a new database and its first vehicle. The maker-specific codes come at the next start.
bool create_schema(sqlite_connection& connection);
// Adds to an existing database the tables and columns that came later.
bool migrate_schema(sqlite_connection& connection);
// Makes the table of the photos when it is missing.
bool create_photo_table(sqlite_connection& connection);

} // namespace brivant
