#include "shell/stop_signals.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace brivant {

namespace {

int signal_pipe[2] = {-1, -1};

void on_signal(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(signal_pipe[1], &byte, 1);
}

} // namespace

stop_signals::stop_signals(std::function<void()> on_stop) : call(std::move(on_stop)) {
    if (pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    arrived = std::make_unique<QSocketNotifier>(signal_pipe[0], QSocketNotifier::Read);
    connect(arrived.get(), &QSocketNotifier::activated, this, [this] {
        arrived->setEnabled(false);
        call();
    });
    struct sigaction action = {};
    action.sa_handler = on_signal;
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace brivant
