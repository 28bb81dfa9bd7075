#pragma once

#include "base/timers.h"

#include <QList>
#include <QString>
#include <array>
#include <optional>

namespace brivant {

// What lies between an operation's start and its first request: each in turn, and how long it took.
enum class start_step { radio, link, adapter, protocol, ecus };

class start_steps {
public:
    enum class condition { to_come, under_way, done, failed };
    struct row {
        start_step what;
        condition state;
        int milliseconds; // so far
    };

    explicit start_steps(const timers& time_source) : clock(time_source) {}

    // A link begins to open, by radio or not.
    void begin(bool by_radio);
    // That step is done, and those before it.
    void reached(start_step what);
    // It went no further, if it was not done.
    void broke_off() { is_broken = !is_over(); }

    // Empty before the first begin().
    QList<row> rows() const;
    bool is_over() const { return next > last; }
    // "Link 0.1 s, adapter 1.1 s, protocol ..." as far as it came; "" before the first begin().
    QString sentence() const;

private:
    static constexpr int last = static_cast<int>(start_step::ecus);

    const timers& clock;
    std::array<std::int64_t, last + 1> ended{}; // in microseconds, of those before `next`
    std::int64_t began = 0;
    int first = last + 1;
    int next = last + 1;
    bool is_broken = false;
};

// "Radio", "Link", "Adapter", "Protocol", "ECUs".
QString name_of(start_step what);

} // namespace brivant
