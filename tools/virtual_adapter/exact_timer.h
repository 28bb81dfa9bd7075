#pragma once

#include <QSocketNotifier>

#include <functional>

namespace virtual_adapter {

// Calls at a moment of the monotonic clock, within microseconds when the event loop is free: a QTimer knows
// whole milliseconds only.
class exact_timer {
public:
    explicit exact_timer(std::function<void()> call);
    ~exact_timer();
    exact_timer(const exact_timer&) = delete;
    exact_timer& operator=(const exact_timer&) = delete;

    static double now_ms();
    void call_at(double moment_ms); // in place of the moment before
    void stop();

private:
    std::function<void()> m_call;
    int m_descriptor;
    QSocketNotifier m_due;
};

} // namespace virtual_adapter
