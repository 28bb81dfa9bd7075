#include "base/qt_timers.h"
#include "tests/support/wait_until.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace brivant {

TEST(qt_timers, come_in_the_order_of_their_time_unless_they_are_stopped) {
    QStringList came;
    std::vector<timer_handle> handles;
    {
        qt_timers clock; // handles outlive it
        const auto note = [&came](const char* name) { return [&came, name] { came += name; }; };
        handles.push_back(clock.one_shot(30, note("last")));
        handles.push_back(clock.one_shot(10, note("second")));
        handles.push_back(clock.one_shot(0, note("first")));
        handles.push_back(clock.one_shot(10, note("third")));
        handles.push_back(clock.one_shot(5, note("stopped")));
        handles.pop_back();
        handles.push_back(clock.one_shot(-1, note("zero")));
    }
    EXPECT_EQ(came, QStringList()); // never inside the start
    EXPECT_TRUE(wait_until([&] { return came.contains("last"); }));
    came.removeOne("zero");
    EXPECT_EQ(came, QStringList({"first", "second", "third", "last"}));
    handles.clear(); // those that came too
}

TEST(qt_timers, repeat_until_they_are_stopped_from_inside_too) {
    qt_timers clock;
    int ticks = 0;
    int started = 0;
    timer_handle ticking;
    timer_handle other;
    ticking = clock.repeating(1, [&] {
        if (++ticks == 3)
            ticking.reset();
        // The same handle for a new timer: what a command's time-out does when the command is sent again.
        other = clock.one_shot(1, [&] {
            ++started;
            other.reset();
        });
    });
    EXPECT_TRUE(wait_until([&] { return started > 0 && ticks == 3 && !other; }));
    bool is_over = false;
    const timer_handle later = clock.one_shot(20, [&] { is_over = true; });
    EXPECT_TRUE(wait_until([&] { return is_over; }));
    EXPECT_EQ(ticks, 3);
}

} // namespace brivant
