#pragma once

#include "persistence/sqlite_connection.h"

namespace brivant {

// Looks at what a file says its tables are before anything is asked of them: the tables of this program hold
// values only. A view or a virtual table in the place of one, a column, a default or an index that is worked
// out, and a condition on its values would all run what somebody else wrote. The name of such a table, "" for
// none, nothing when the file cannot be read.
std::optional<QString> table_that_runs_something(sqlite_connection& connection);

} // namespace brivant
