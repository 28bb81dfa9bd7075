#include "link/start_steps.h"

#include <QStringList>

namespace brivant {

QString name_of(start_step what) {
    constexpr std::array<const char*, 5> names{"Radio", "Link", "Adapter", "Protocol", "ECUs"};
    return QLatin1String(names[static_cast<size_t>(what)]);
}

void start_steps::begin(bool by_radio) {
    first = next = static_cast<int>(by_radio ? start_step::radio : start_step::link);
    began = clock.microseconds();
    is_broken = false;
}

void start_steps::reached(start_step what) {
    for (; next <= static_cast<int>(what) && next <= last; ++next)
        ended[static_cast<size_t>(next)] = clock.microseconds();
}

QList<start_steps::row> start_steps::rows() const {
    QList<row> found;
    std::int64_t before = began;
    for (int step = first; step <= last; ++step) {
        condition state = step < next ? condition::done : condition::to_come;
        if (step == next)
            state = is_broken ? condition::failed : condition::under_way;
        const std::int64_t until = step < next    ? ended[static_cast<size_t>(step)]
                                   : step == next ? clock.microseconds()
                                                  : before;
        found += {static_cast<start_step>(step), state, static_cast<int>((until - before) / 1000)};
        before = until;
    }
    return found;
}

QString start_steps::sentence() const {
    QStringList parts;
    for (const row& one : rows()) {
        if (one.state == condition::to_come)
            break;
        QString part =
            parts.isEmpty() || one.what == start_step::ecus ? name_of(one.what) : name_of(one.what).toLower();
        part += one.state == condition::failed      ? QStringLiteral(" failed")
                : one.state == condition::under_way ? QStringLiteral(" ...")
                                                    : QString();
        if (one.state != condition::under_way)
            part += QStringLiteral(" %1 s").arg(one.milliseconds / 1000.0, 0, 'f', 1);
        parts += part;
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace brivant
