#pragma once

#include "tools/virtual_adapter/elm327.h"

#include <span>

namespace virtual_adapter {

// The most values of those mode 01 PIDs that a client can have a second, and what it is made of.
//
// By the mean of every number of the adapter's timing, and by the best plan: no echo, spaces and line feeds,
// headers on (whoever does not see who answers cannot be sure of a value), each PID from the first ECU that
// has it, the next request with the prompt of the last. On CAN up to six PIDs of one ECU a request, divided
// in the way that takes the least time. One ECU is addressed where the protocol knows that; of several ECUs
// all but one cost an "AT SH" a sweep or, on an ST chip, longer requests, whichever is less. The count digit
// ends the wait; on J1850, where it must not be used, the shortest "AT ST" does that the slowest answer
// allows. Faults of the adapter do not count.
struct ceiling {
    double values_per_second = 0;
    std::vector<std::string> lines; // a number each, for a person
};

// `options` with their timing.
ceiling ceiling_of(const std::shared_ptr<car>& on, const adapter_options& options,
                   std::span<const std::uint8_t> pids);

} // namespace virtual_adapter
