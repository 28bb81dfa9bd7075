#pragma once

#include "base/timers.h"

namespace brivant {

// Watches a link that is opening: once a second, until it is stopped. The first six seconds are quiet; after
// the twentieth tick it gives up.
class connect_watchdog {
public:
    // `waiting(tick)` is called on each tick, `quiet` telling whether it is one of the first six;
    // `given_up()` on the twentieth instead.
    connect_watchdog(timers& time_source, std::function<void(int tick, bool quiet)> waiting,
                     std::function<void()> given_up);

    void start();
    void stop() { tcpConnectTimeOut.reset(); }
    bool is_running() const { return tcpConnectTimeOut != nullptr; }

    static constexpr int last_tick = 20;

private:
    void tcpConnectTimeOutHandler();

    timers& clock;
    std::function<void(int, bool)> on_waiting;
    std::function<void()> on_given_up;
    timer_handle tcpConnectTimeOut;
    int tcpConnectTick = 0;
};

} // namespace brivant
