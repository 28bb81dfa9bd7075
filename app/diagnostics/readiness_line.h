#pragma once

#include "app/look/theme.h"
#include "obd/readiness.h"

namespace brivant {

// The readiness monitors as one text that wraps, as HTML: a tick before what is complete, the words "not
// complete" behind what is not; what the car does not have is quiet. "" without monitors.
QString readiness_line(const QList<readiness_row>& monitors, const theme& look);
// The same in words, for those who hear it.
QString readiness_words(const QList<readiness_row>& monitors);

} // namespace brivant
