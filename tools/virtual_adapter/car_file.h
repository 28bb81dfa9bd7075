#pragma once

#include "tools/virtual_adapter/car_description.h"

#include <string_view>

namespace virtual_adapter {

// Reads a car file; its format is described in cars/README. At a mistake, none, and `problem` says where and
// what: "line 12: no such PID".
std::optional<car_description> parse_car(std::string_view text, std::string& problem);

} // namespace virtual_adapter
