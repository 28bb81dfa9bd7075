#include "tools/virtual_adapter/exact_timer.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

namespace virtual_adapter {

namespace {

constexpr double ns_in_ms = 1e6;
constexpr long long ns_in_s = 1'000'000'000;

} // namespace

exact_timer::exact_timer(std::function<void()> call)
    : m_call(std::move(call)), m_descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      m_due(m_descriptor, QSocketNotifier::Read) {
    QObject::connect(&m_due, &QSocketNotifier::activated, &m_due, [this] {
        std::uint64_t times = 0;
        if (read(m_descriptor, &times, sizeof times) == ssize_t(sizeof times))
            m_call();
    });
}

exact_timer::~exact_timer() {
    m_due.setEnabled(false);
    close(m_descriptor);
}

double exact_timer::now_ms() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) * 1000 + double(now.tv_nsec) / ns_in_ms;
}

void exact_timer::call_at(double moment_ms) {
    const auto ns = std::max(1LL, static_cast<long long>(moment_ms * ns_in_ms)); // 0 would stop it
    const itimerspec at{{}, {time_t(ns / ns_in_s), long(ns % ns_in_s)}};
    timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME, &at, nullptr);
}

void exact_timer::stop() {
    const itimerspec never{};
    timerfd_settime(m_descriptor, 0, &never, nullptr);
}

} // namespace virtual_adapter
