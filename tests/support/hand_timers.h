#pragma once

#include "base/timers.h"

#include <map>

namespace brivant {

// Time that passes only when a test says so.
class hand_timers : public timers {
public:
    [[nodiscard]] timer_handle one_shot(int milliseconds, std::function<void()> call) override;
    [[nodiscard]] timer_handle repeating(int milliseconds, std::function<void()> call) override;
    std::int64_t microseconds() const override { return std::int64_t{1000} * now; }

    // Lets time pass; what falls due on the way is called in order.
    void advance(int milliseconds);
    // How many timers wait for something.
    size_t running() const { return waiting->size(); }

private:
    struct entry {
        int due;
        int every; // 0: once
        std::function<void()> call;
    };
    class handle;
    timer_handle add(entry made);

    std::shared_ptr<std::map<int, entry>> waiting = std::make_shared<std::map<int, entry>>();
    int now = 0;
    int next_id = 0;
};

} // namespace brivant
