#include "link/connect_watchdog.h"

namespace brivant {

namespace {
constexpr int quiet_ticks = 6;
constexpr int tick_milliseconds = 1000;
} // namespace

connect_watchdog::connect_watchdog(timers& time_source, std::function<void(int, bool)> waiting,
                                   std::function<void()> given_up)
    : clock(time_source), on_waiting(std::move(waiting)), on_given_up(std::move(given_up)) {}

void connect_watchdog::start() {
    tcpConnectTick = 0;
    tcpConnectTimeOut = clock.repeating(tick_milliseconds, [this] { tcpConnectTimeOutHandler(); });
}

void connect_watchdog::tcpConnectTimeOutHandler() {
    const int before = tcpConnectTick++;
    if (tcpConnectTick < last_tick)
        on_waiting(tcpConnectTick, before < quiet_ticks);
    else
        on_given_up();
}

} // namespace brivant
