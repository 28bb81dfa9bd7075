#pragma once

#include "base/qt_timers.h"

namespace brivant {

// Timers of the event loop for tests with real links: time-outs and pauses are ten times as short.
class quick_timers : public timers {
public:
    static constexpr int faster = 10;

    [[nodiscard]] timer_handle one_shot(int milliseconds, std::function<void()> call) override {
        return real.one_shot(milliseconds / faster, std::move(call));
    }
    [[nodiscard]] timer_handle repeating(int milliseconds, std::function<void()> call) override {
        return real.repeating(milliseconds / faster, std::move(call));
    }
    std::int64_t microseconds() const override { return real.microseconds() * faster; }

private:
    qt_timers real;
};

} // namespace brivant
