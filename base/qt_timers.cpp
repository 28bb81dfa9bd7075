#include "base/qt_timers.h"

#include <QBasicTimer>
#include <QObject>
#include <algorithm>
#include <chrono>
#include <map>

namespace brivant {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class event_loop_timer;

// The timers that have not come yet, and the event loop's own timer for the earliest of them. Nearly every
// timer is stopped before it comes, one with each command, so that starting and stopping must cost next to
// nothing.
class timer_events : public QObject {
public:
    using places = std::multimap<steady_clock::time_point, event_loop_timer*>;

    places::iterator add(milliseconds delay, event_loop_timer& timer) {
        const auto place = waiting.emplace(steady_clock::now() + delay, &timer);
        if (!alarm.isActive() || place->first < alarm_at)
            set_alarm();
        return place;
    }
    // The alarm stays: it comes once for nothing.
    void remove(places::iterator place) { waiting.erase(place); }
    places::iterator nowhere() { return waiting.end(); }

protected:
    void timerEvent(QTimerEvent*) override;

private:
    void set_alarm() {
        alarm.stop();
        if (waiting.empty())
            return;
        alarm_at = waiting.begin()->first;
        const auto left = std::chrono::ceil<milliseconds>(alarm_at - steady_clock::now());
        alarm.start(static_cast<int>(std::max(left, milliseconds(0)).count()), Qt::PreciseTimer, this);
    }

    places waiting;
    QBasicTimer alarm;
    steady_clock::time_point alarm_at;
};

class event_loop_timer : public running_timer {
public:
    event_loop_timer(std::shared_ptr<timer_events> its_events, int delay_ms, bool repeats,
                     std::function<void()> its_call)
        : events(std::move(its_events)), delay(std::max(delay_ms, 0)), is_repeating(repeats),
          call(std::move(its_call)), place(events->add(delay, *this)) {}
    ~event_loop_timer() override {
        if (place != events->nowhere())
            events->remove(place);
    }
    Q_DISABLE_COPY_MOVE(event_loop_timer)

    // What is to be called. From now on the timer waits for its next turn, if it has one.
    std::function<void()> come() {
        events->remove(place);
        place = is_repeating ? events->add(delay, *this) : events->nowhere();
        return call;
    }

private:
    std::shared_ptr<timer_events> events;
    milliseconds delay;
    bool is_repeating;
    std::function<void()> call;
    timer_events::places::iterator place;
};

// One timer a turn of the event loop, so that calls which take long do not keep other events waiting.
void timer_events::timerEvent(QTimerEvent*) {
    std::function<void()> call;
    if (!waiting.empty() && waiting.begin()->first <= steady_clock::now())
        call = waiting.begin()->second->come();
    set_alarm();
    if (call)
        call(); // last: it may destroy the timer that it belongs to
}

qt_timers::qt_timers() : events(std::make_shared<timer_events>()) {}
qt_timers::~qt_timers() = default;

timer_handle qt_timers::one_shot(int delay_ms, std::function<void()> call) {
    return std::make_unique<event_loop_timer>(events, delay_ms, false, std::move(call));
}

timer_handle qt_timers::repeating(int delay_ms, std::function<void()> call) {
    return std::make_unique<event_loop_timer>(events, delay_ms, true, std::move(call));
}

std::int64_t qt_timers::microseconds() const {
    using namespace std::chrono;
    return duration_cast<std::chrono::microseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace brivant
