#include "charts/time_axis.h"

#include <QLocale>
#include <array>
#include <cmath>

namespace brivant {

namespace {

constexpr double second = 1000;
constexpr double minute = 60 * second;
constexpr double hour = 60 * minute;
constexpr std::array steps{1.0,         2.0,         5.0,         10.0,   20.0,       50.0,
                           100.0,       200.0,       500.0,       second, 2 * second, 5 * second,
                           10 * second, 15 * second, 30 * second, minute, 2 * minute, 5 * minute,
                           10 * minute, 15 * minute, 30 * minute, hour,   2 * hour,   3 * hour,
                           6 * hour,    12 * hour};

} // namespace

time_axis time_axis::between(double from, double to, int wanted) {
    time_axis axis;
    const double span = to - from;
    if (!(span > 0) || !std::isfinite(span) || wanted < 1)
        return axis;
    double step = steps.back();
    while (step < span / wanted)
        step *= 2;
    for (auto each = steps.rbegin(); each != steps.rend() && *each >= span / wanted; ++each)
        step = *each;
    axis.decimals = step < 10 ? 3 : step < 100 ? 2 : step < second ? 1 : 0;
    const double last = std::floor(to / step + 1e-6);
    for (double count = std::ceil(from / step - 1e-6); count <= last; ++count)
        axis.moments.append(count * step + 0.0);
    return axis;
}

QString clock_text(double ms, int decimals) {
    constexpr qint64 minute_s = 60;
    constexpr qint64 hour_s = 3600;
    const auto whole_ms = static_cast<qint64>(std::floor(ms + 1e-6));
    const qint64 seconds = whole_ms / 1000;
    const QString below_minute =
        QStringLiteral("%1").arg(seconds % minute_s, 2, 10, QChar(u'0')) +
        (decimals > 0 ? QLocale().decimalPoint() +
                            QStringLiteral("%1").arg(whole_ms % 1000, 3, 10, QChar(u'0')).left(decimals)
                      : QString());
    const qint64 minutes = seconds / minute_s % minute_s;
    if (seconds < hour_s)
        return QStringLiteral("%1:%2").arg(minutes).arg(below_minute);
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / hour_s)
        .arg(minutes, 2, 10, QChar(u'0'))
        .arg(below_minute);
}

} // namespace brivant
