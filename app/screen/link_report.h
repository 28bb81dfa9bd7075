#pragma once

#include "app/screen/link_mark.h"
#include "link/adapter_link.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// The words of the link mark: how the link stands, and the adapter, protocol and ECUs at its far end.
// `is_demo`: the link leads to the demo's car.
link_words report_link(const adapter_link& link, const car_state& car, const mac_toolies& toolies,
                       bool is_demo);

} // namespace brivant
