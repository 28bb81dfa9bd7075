#pragma once

#include <string_view>

namespace virtual_adapter {

// Commands (without AT) that only tell something, or set what changes nothing here, and the version of the
// chip that brought each: 1.2, 1.31 for 1.3a, 1.42 for 1.4b.

// What a chip of that version answers; nullptr where it does not know the command.
const char* answer_by_version(std::string_view command, double version);

} // namespace virtual_adapter
