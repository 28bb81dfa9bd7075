#pragma once

#include "base/shared_types.h"

namespace brivant {

class text_resources;

// The engine computers of one car maker: the reply to a mode 22 request (ISO 14229 ReadDataByIdentifier) as
// the text that a person reads. `reply`: "62", four digits of identifier, data; without header, blanks and
// prompt allowed. "~" for fewer than 7 characters and for an unknown identifier; "N/A" when data or the list
// entry is missing.
QString translateResponse_subaru(const QString& reply, unit_system units, const text_resources& lists);

} // namespace brivant
