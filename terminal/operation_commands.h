#pragma once

#include "terminal/commands.h"

namespace brivant {

// The commands of the operations beyond trouble codes: pending codes and freeze frame, vehicle information,
// test results, extras, and the report.
std::span<const cli_command> operation_commands();

} // namespace brivant
