#pragma once

#include "tests/fault_matrix/operations.h"
#include "tests/support/quick_timers.h"
#include "tests/support/wait_until.h"

namespace brivant {

// It is there before the bench.
struct quick_clock {
    quick_timers clock;
};

// The controllers on the program's own transports, and a person who answers Yes.
class real_link_bench : public quick_clock, public operation_bench {
public:
    explicit real_link_bench(const adapter_address& where) : operation_bench(clock, make_transport) {
        place.choose(where, QString());
    }

    // To the end of the operation, or until `enough`. False when neither comes.
    bool pump(const std::function<bool()>& enough = [] { return false; }) {
        return wait_until(
            [&] {
                view.answer(true);
                return !is_running() || enough();
            },
            20'000);
    }
};

} // namespace brivant
