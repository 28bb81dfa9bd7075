#pragma once

#include "tools/virtual_adapter/adapter_settings.h"

#include <array>

namespace virtual_adapter {

// How long the adapter waits for a frame, or for one more behind the last.
//
// AT0: as "AT ST" says: its units of 4.096 ms.
// AT1: twice the slowest of the last eight requests, and at least 32 ms.
// AT2: one and a quarter times as much as that slowest one and 4 ms, and at least 12 ms.
// Neither waits longer than "AT ST" says. The slowest is the longest that a frame let wait for itself; until
// there was one, and behind a request that nobody answered, the wait is that of "AT ST".
class answer_wait {
public:
    // `asked_ms` is what the request itself asks for instead of "AT ST"; 0 for nothing.
    double ms(const adapter_settings& set, double asked_ms = 0) const;

    void heard(double longest_ms);
    void forget() { m_known = 0; }

private:
    std::array<double, 8> m_longest{};
    std::size_t m_known = 0; // of them, up to eight
    std::size_t m_next = 0;
};

} // namespace virtual_adapter
