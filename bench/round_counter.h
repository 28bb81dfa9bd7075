#pragma once

#include "base/screen.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

namespace brivant {

// What the benchmarks of exchanges share: how long is measured, and what ends one that cannot go on.

inline constexpr int rounds = 9;
inline constexpr qint64 round_ms = 1500;
inline constexpr int patience_ms = 20'000;

[[noreturn]] inline void give_up(const QString& why) {
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(1);
}

class quiet_screen : public screen {
public:
    void show_status(const QString&) override {}
    void show_toast(const QString&) override {}
    void show_busy(bool) override {}
    void show_message(const QString&, const QString& text) override { give_up(text); }
    void ask_yes_no(const QString&, const QString&, std::function<void(bool)> answer) override {
        answer(true);
    }
    void reload(part) override {}
    void play_sound(int) override {}
    void beep() override {}
};

// The exchanges of one round, and when it is over.
class round_counter {
public:
    round_counter() {
        watchdog.callOnTimeout([] { give_up(QStringLiteral("the adapter is silent")); });
    }

    // Runs the event loop until next() has said no. The exchanges a second, from the first one on.
    template <typename function>
    double run(function start, qint64 its_count = -1) {
        count = 0;
        wanted = its_count;
        watchdog.start(patience_ms);
        start();
        loop.exec();
        watchdog.stop();
        return static_cast<double>(count - 1) * 1e9 / static_cast<double>(elapsed_ns);
    }
    // Called for each value: true when another one is wanted.
    bool next() {
        if (count++ == 0)
            clock.start();
        elapsed_ns = clock.nsecsElapsed();
        if (wanted > 0 ? count < wanted : elapsed_ns < round_ms * 1'000'000) {
            if (count % 1000 == 0)
                watchdog.start();
            return true;
        }
        loop.quit();
        return false;
    }
    qint64 so_far() const { return count; }

private:
    QEventLoop loop;
    QTimer watchdog;
    QElapsedTimer clock;
    qint64 count = 0;
    qint64 wanted = -1;
    qint64 elapsed_ns = 0;
};

} // namespace brivant
