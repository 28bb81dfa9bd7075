#pragma once

#include "base/timers.h"

// Timers of the Qt event loop.
class qt_timers : public timers {
public:
    [[nodiscard]] timer_handle one_shot(int milliseconds, std::function<void()> call) override;
    [[nodiscard]] timer_handle repeating(int milliseconds, std::function<void()> call) override;
};
