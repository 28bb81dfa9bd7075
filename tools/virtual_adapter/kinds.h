#pragma once

#include "tools/virtual_adapter/elm327.h"

#include <string_view>
#include <vector>

namespace virtual_adapter {

// The adapter of that kind: what it answers about itself, and how long everything takes. Nothing for another
// name.
std::optional<adapter_options> adapter_of_kind(std::string_view name);

std::vector<std::string_view> adapter_kinds();

} // namespace virtual_adapter
