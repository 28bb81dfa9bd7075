#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace brivant {

// Runs the event loop until the condition holds. False when it does not within the bound.
template <typename Condition>
bool wait_until(Condition holds, int milliseconds = 10000) {
    const QDeadlineTimer deadline(milliseconds);
    QTimer look_again; // else the loop would sleep on when nothing happens
    look_again.start(5);
    while (!holds()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace brivant
