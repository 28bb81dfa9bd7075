#pragma once

#include <cstdio>
#include <cstdlib>

namespace brivant {

// What has to be true whatever the adapter sends; a fuzzer stops at the first input for which it is not.
inline void must_hold(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace brivant
