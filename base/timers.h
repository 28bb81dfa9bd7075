#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace brivant {

// A running timer; destroying it stops it, so its owner never hears from it afterwards.
class running_timer {
public:
    virtual ~running_timer() = default;
};
using timer_handle = std::unique_ptr<running_timer>;

// Where time comes from. The tests' version is cranked by hand. A call may destroy its own handle.
class timers {
public:
    virtual ~timers() = default;
    [[nodiscard]] virtual timer_handle one_shot(int milliseconds, std::function<void()> call) = 0;
    [[nodiscard]] virtual timer_handle repeating(int milliseconds, std::function<void()> call) = 0;
    // Microseconds of a clock that only goes forward, whatever is done to the date.
    virtual std::int64_t microseconds() const = 0;
};

} // namespace brivant
