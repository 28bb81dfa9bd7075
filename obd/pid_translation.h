#pragma once

#include "base/shared_types.h"

namespace brivant {

class text_resources;

// Mode 01 replies (SAE J1979 service 01, and freeze-frame replies rewritten to "42", PID, data) as the text
// that a person reads.

// `reply`: one ECU's reply without its header ("41 0C 1A F8"; blanks, prompt and further lines may follow).
// "~" when the reply carries no value; "N/A" when it cannot be decoded (too few data bytes, a list line that
// does not exist); the reply as it was passed in for a PID without a translation.
QString translateResponse(const QString& reply, unit_system units, const text_resources& lists);

// The number that the translated text begins with; 0 when it begins with a word, NaN when the reply carries
// no value.
double get_OBDVal(const QString& reply, unit_system units, const text_resources& lists);

} // namespace brivant
