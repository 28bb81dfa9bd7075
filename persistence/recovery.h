#pragma once

#include "persistence/database.h"

namespace brivant {

// What a sudden end has left half done in the database, of this program or an older one: runs that were not
// finished, headers without anything behind them, lines and photos that belong to nothing, logs whose vehicle
// is gone (they go to a vehicle named "Recovered"). Run at start-up, when results can be stored. What was
// done, in a sentence; "" when all was in order. A run that any program stores just now is left alone.
QString put_in_order(database& db);

} // namespace brivant
