#include "base/qt_timers.h"

#include <QHash>
#include <QObject>
#include <QTimerEvent>

class event_loop_timer;

// Receives the events of all timers. A receiver for each timer would have to be deleted by the event loop, since
// a call may destroy its own handle; one timer a command makes that the greater part of its cost.
class timer_events : public QObject {
public:
    int start(int milliseconds, event_loop_timer& timer) {
        const int id = startTimer(milliseconds);
        running.insert(id, &timer);
        return id;
    }
    void stop(int id) {
        killTimer(id);
        running.remove(id);
    }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    QHash<int, event_loop_timer*> running;
};

class event_loop_timer : public running_timer {
public:
    event_loop_timer(std::shared_ptr<timer_events> its_events, int milliseconds, bool repeats,
                     std::function<void()> its_call)
        : events(std::move(its_events)), call(std::move(its_call)), is_repeating(repeats),
          id(events->start(milliseconds, *this)) {}
    ~event_loop_timer() override { stop(); }
    Q_DISABLE_COPY_MOVE(event_loop_timer)

    void come() {
        const std::function<void()> due = call; // the call may destroy this timer
        if (!is_repeating)
            stop();
        due();
    }

private:
    void stop() {
        if (id != 0)
            events->stop(id);
        id = 0;
    }

    std::shared_ptr<timer_events> events;
    std::function<void()> call;
    bool is_repeating;
    int id; // 0 when it has come or could not be started
};

void timer_events::timerEvent(QTimerEvent* event) {
    if (event_loop_timer* timer = running.value(event->timerId()))
        timer->come();
}

qt_timers::qt_timers() : events(std::make_shared<timer_events>()) {}
qt_timers::~qt_timers() = default;

timer_handle qt_timers::one_shot(int milliseconds, std::function<void()> call) {
    return std::make_unique<event_loop_timer>(events, milliseconds, false, std::move(call));
}

timer_handle qt_timers::repeating(int milliseconds, std::function<void()> call) {
    return std::make_unique<event_loop_timer>(events, milliseconds, true, std::move(call));
}
