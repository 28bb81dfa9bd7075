#pragma once

#include "base/timers.h"
#include "link/transport.h"
#include "tools/virtual_adapter/timed_adapter.h"

#include <QPointer>
#include <cmath>
#include <map>

namespace brivant {

// Time that passes as soon as everything that belongs to the moment is done: what a program does in an hour
// with an adapter takes as long as its own work.
class virtual_time : public timers {
public:
    timer_handle one_shot(int milliseconds, std::function<void()> call) override {
        return add(1000LL * milliseconds, 0, std::move(call));
    }
    timer_handle repeating(int milliseconds, std::function<void()> call) override {
        return add(1000LL * milliseconds, 1000LL * milliseconds, std::move(call));
    }
    std::int64_t microseconds() const override { return now; }
    double milliseconds() const { return static_cast<double>(now) / 1000; }

    void at(double ms, std::function<void()> call) {
        waiting->emplace(std::max<std::int64_t>(now, std::llround(1000 * ms)), entry{-1, 0, std::move(call)});
    }
    // Until `done` says so, or `most_ms` have passed; false when nothing waits any more.
    template <typename Done>
    bool pass(double most_ms, Done done) {
        const std::int64_t end = now + std::llround(1000 * most_ms);
        while (!done() && now < end) {
            if (waiting->empty())
                return false;
            auto next = waiting->extract(waiting->begin());
            now = std::max(now, next.key());
            entry& due = next.mapped();
            const auto call = due.call; // it may take its own timer away
            if (due.every > 0) {
                next.key() = now + due.every;
                waiting->insert(std::move(next));
            }
            call();
        }
        return true;
    }

private:
    struct entry {
        int id; // of a timer that can be taken away
        std::int64_t every;
        std::function<void()> call;
    };
    using queue = std::multimap<std::int64_t, entry>;
    struct handle : running_timer {
        handle(std::weak_ptr<queue> in, int its_id) : waits_in(std::move(in)), id(its_id) {}
        ~handle() override {
            if (const auto all = waits_in.lock())
                std::erase_if(*all, [this](const auto& one) { return one.second.id == id; });
        }
        std::weak_ptr<queue> waits_in;
        int id;
    };
    timer_handle add(std::int64_t us, std::int64_t every, std::function<void()> call) {
        waiting->emplace(now + us, entry{++ids, every, std::move(call)});
        return std::make_unique<handle>(waiting, ids);
    }

    std::shared_ptr<queue> waiting = std::make_shared<queue>();
    std::int64_t now = 0;
    int ids = 0;
};

// A virtual adapter of a kind behind a transport, in virtual time; each link begins with a fresh one.
class timed_transport : public transport {
public:
    timed_transport(virtual_time& its_clock, std::shared_ptr<virtual_adapter::car> its_car,
                    virtual_adapter::adapter_options its_options,
                    virtual_adapter::clone_faults its_faults = {})
        : clock(its_clock), car_there(std::move(its_car)), kind(std::move(its_options)),
          wrongs(std::move(its_faults)) {}

    condition state() const override { return current; }
    void open() override {
        adapter = std::make_shared<virtual_adapter::timed_adapter>(car_there, kind, wrongs);
        current = condition::open;
        Q_EMIT opened();
    }
    void close() override {
        adapter.reset();
        current = condition::closed;
    }
    void write(const QByteArray& command) override {
        if (!adapter)
            return;
        for (const virtual_adapter::timed_text& piece :
             adapter->send({command.data(), static_cast<size_t>(command.size())}, clock.milliseconds()))
            clock.at(piece.at_ms, [self = QPointer(this), of = std::weak_ptr(adapter),
                                   text = QString::fromStdString(passed(piece.text))] {
                if (!of.expired() && !text.isEmpty())
                    Q_EMIT self->OBDevent(text);
            });
    }

protected:
    // What becomes of a text on its way.
    virtual std::string passed(std::string text) { return text; }

private:
    virtual_time& clock;
    const std::shared_ptr<virtual_adapter::car> car_there;
    const virtual_adapter::adapter_options kind;
    const virtual_adapter::clone_faults wrongs;
    std::shared_ptr<virtual_adapter::timed_adapter> adapter;
    condition current = condition::closed;
};

} // namespace brivant
