#pragma once

#include "app/screen/screen_view.h"

namespace brivant {

// The person chooses which of the two readings is shown, wherever it is asked: the choice is kept, and the
// screen is told by reload(part::reading).
void choose_reading(const view_context& context, bool standard);

} // namespace brivant
