#include "terminal/mark_input.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace brivant {

namespace {

constexpr qsizetype longest_line = 1024;

int signal_pipe[2] = {-1, -1};

void on_signal(int) {
    const int before = errno;
    const char line_end = '\n';
    [[maybe_unused]] const ssize_t written = write(signal_pipe[1], &line_end, 1);
    errno = before;
}

// A program in the background that reads from its terminal is stopped by it.
bool may_be_read(int descriptor) {
    return !isatty(descriptor) || tcgetpgrp(descriptor) == getpgrp();
}

} // namespace

mark_input::mark_input(std::function<void(const QString& word)> on_mark) : call(std::move(on_mark)) {
    if (pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    struct sigaction action = {};
    action.sa_handler = on_signal;
    action.sa_flags = SA_RESTART;
    sigaction(SIGUSR1, &action, nullptr);
}

mark_input::~mark_input() {
    std::signal(SIGUSR1, SIG_IGN);
}

void mark_input::listen() {
    const auto listen_to = [this](int descriptor, std::unique_ptr<QSocketNotifier>& notifier) {
        notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
        connect(notifier.get(), &QSocketNotifier::activated, this,
                [this, descriptor, its = notifier.get()] { read_from(descriptor, *its); });
    };
    listen_to(STDIN_FILENO, typed);
    if (signal_pipe[0] >= 0)
        listen_to(signal_pipe[0], signalled);
}

void mark_input::read_from(int descriptor, QSocketNotifier& notifier) {
    char bytes[longest_line];
    const ssize_t size = may_be_read(descriptor) ? read(descriptor, bytes, sizeof bytes) : 0;
    if (size <= 0)
        return notifier.setEnabled(false); // its end
    if (&notifier == signalled.get())
        return call(QString());
    for (const char c : QByteArray(bytes, size)) {
        if (c == '\n')
            call(QString::fromUtf8(std::exchange(line, QByteArray())));
        else if (line.size() < longest_line)
            line += c;
    }
}

} // namespace brivant
