#include "base/qt_timers.h"

#include <QTimer>

namespace {

// The call may destroy its own handle, so the timer itself goes when control is back in the event loop.
class event_loop_timer : public running_timer {
public:
    event_loop_timer(int milliseconds, bool repeats, std::function<void()> call) : ticks(new QTimer) {
        ticks->setSingleShot(!repeats);
        ticks->callOnTimeout(std::move(call));
        ticks->start(milliseconds);
    }
    ~event_loop_timer() override {
        ticks->stop();
        ticks->disconnect();
        ticks->deleteLater();
    }
    Q_DISABLE_COPY_MOVE(event_loop_timer)

private:
    QTimer* ticks;
};

} // namespace

timer_handle qt_timers::one_shot(int milliseconds, std::function<void()> call) {
    return std::make_unique<event_loop_timer>(milliseconds, false, std::move(call));
}

timer_handle qt_timers::repeating(int milliseconds, std::function<void()> call) {
    return std::make_unique<event_loop_timer>(milliseconds, true, std::move(call));
}
