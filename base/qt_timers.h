#pragma once

#include "base/timers.h"

namespace brivant {

// Timers of the Qt event loop of the thread that made it. A handle may outlive it.
class qt_timers : public timers {
public:
    qt_timers();
    ~qt_timers() override;

    [[nodiscard]] timer_handle one_shot(int milliseconds, std::function<void()> call) override;
    [[nodiscard]] timer_handle repeating(int milliseconds, std::function<void()> call) override;
    std::int64_t microseconds() const override;

private:
    std::shared_ptr<class timer_events> events;
};

} // namespace brivant
