#pragma once

#include "link/transport.h"
#include "tests/support/hand_timers.h"
#include "tools/virtual_adapter/adapter_session.h"

#include <cmath>
#include <deque>

namespace brivant {

// A virtual adapter on a car behind a transport, without a socket: what it waits for is cranked by hand, and
// what it says arrives piece by piece with deliver_next(), never inside a call of the program.
class in_process_adapter : public transport {
public:
    using car_pointer = std::shared_ptr<virtual_adapter::car>;

    in_process_adapter(hand_timers& time_source, car_pointer its_car)
        : clock(time_source), on(std::move(its_car)) {}

    // Both hold from the next open() on.
    virtual_adapter::faults faults;
    virtual_adapter::adapter_options options;
    bool is_there = true; // else open() fails
    QStringList commands; // that it carried out, upper case, without blanks

    struct piece {
        std::string text;
        int late_ms = 0;
    };
    std::function<std::vector<piece>(const std::string&)> trouble; // what becomes of a text on the way

    condition state() const override { return current; }
    void open() override {
        if (current != condition::closed)
            return;
        if (!is_there)
            return Q_EMIT failed("nobody there");
        current = condition::open;
        session = std::make_unique<virtual_adapter::adapter_session>(
            on, options, faults,
            [this](const virtual_adapter::exchange& done) {
                commands += QString::fromStdString(done.command);
            },
            virtual_adapter::adapter_session::outside{
                [this](std::string_view text) {
                    const std::string said(text);
                    for (piece& part : trouble ? trouble(said) : std::vector<piece>{{said}})
                        on_the_way.push_back(std::move(part));
                },
                [this](int milliseconds) {
                    timer = clock.one_shot(milliseconds, [this] {
                        timer.reset();
                        session->waited();
                    });
                },
                [this] { timer.reset(); }, [this] { closes = true; },
                [this] { return static_cast<double>(clock.microseconds()) / 1000; },
                [this](double moment_ms) {
                    const double left_ms = moment_ms - static_cast<double>(clock.microseconds()) / 1000;
                    timer = clock.one_shot(static_cast<int>(std::ceil(left_ms)), [this] {
                        timer.reset();
                        session->waited();
                    });
                }});
        Q_EMIT opened();
    }
    void close() override {
        current = condition::closed;
        timer.reset();
        session.reset();
        on_the_way.clear();
        closes = false;
    }
    void write(const QByteArray& command) override {
        for (const char character : command)
            if (session && !closes)
                session->take(character);
    }
    // From now on not a word, and the link stays.
    void fall_silent() {
        timer.reset();
        session.reset();
        on_the_way.clear();
    }
    bool is_waiting() const { return timer != nullptr; }
    bool has_said_all() const { return on_the_way.empty() && !is_waiting(); }
    // The far end goes away.
    void lose() {
        close();
        Q_EMIT closed();
    }
    // The next piece of text, or the end of the link, arrives. False when nothing is on the way.
    bool deliver_next() {
        if (on_the_way.empty()) {
            if (closes)
                lose();
            return false;
        }
        const piece next = std::move(on_the_way.front());
        on_the_way.pop_front();
        if (next.late_ms > 0)
            clock.advance(next.late_ms);
        const QString text =
            QString::fromLatin1(next.text.data(), qsizetype(next.text.size())).remove(QChar(0));
        if (current == condition::open && !text.isEmpty())
            Q_EMIT OBDevent(text);
        return true;
    }

private:
    hand_timers& clock;
    car_pointer on;
    condition current = condition::closed;
    std::unique_ptr<virtual_adapter::adapter_session> session;
    timer_handle timer;
    std::deque<piece> on_the_way;
    bool closes = false;
};

} // namespace brivant
