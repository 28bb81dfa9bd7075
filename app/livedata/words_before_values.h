#pragma once

#include "app/screen/screen_view.h"
#include "livedata/actions.h"

namespace brivant {

// What the live-data screen says in the place of the pictures while there is no value to show. `ran`: a run
// of this mode has ended.
QString words_before_values(const view_context& context, const actions& controller, bool ran);

} // namespace brivant
