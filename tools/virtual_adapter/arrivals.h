#pragma once

#include "tools/virtual_adapter/framing.h"
#include "tools/virtual_adapter/timing.h"

#include <memory>

namespace virtual_adapter {

using answers_to_a_request = std::shared_ptr<const std::vector<answer>>;

// A frame and the answers it points into.
struct arrival {
    answers_to_a_request owner;
    frame what;
    double at_ms = 0;
};

// The frames of the answers in the order in which they arrive, at moments counted from the end of the
// request. Those of several ECUs do not hold each other up on CAN, and take turns elsewhere.
std::vector<arrival> arrivals(const answers_to_a_request& answers, const car& on, const timing& takes,
                              chance& spread);

// The same without time: in ticks that only keep the usual order.
std::vector<arrival> arrivals(const answers_to_a_request& answers, bus kind);

} // namespace virtual_adapter
