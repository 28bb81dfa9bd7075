#include "charts/plot_span.h"

#include <algorithm>
#include <cmath>

namespace brivant {

plot_span plot_span::with_count(qsizetype wanted, double part) const {
    const qsizetype kept = std::clamp(wanted, std::min(least, length), length);
    const auto shift = static_cast<qsizetype>(std::llround(part * static_cast<double>(count - kept)));
    return plot_span{length, first, kept, least}.moved(shift);
}

plot_span plot_span::moved(qsizetype by) const {
    // Compared before it is added: `by` may be as far as a number goes.
    const qsizetype most = length - count;
    const qsizetype to = by > most - first ? most : by < -first ? 0 : first + by;
    return {length, to, count, least};
}

plot_span plot_span::showing(qsizetype at) const {
    if (at < first)
        return moved(at - first);
    return at >= end() ? moved(at - end() + 1) : *this;
}

double plot_span::slider() const {
    if (length <= least)
        return 1;
    const auto unit = static_cast<double>(least);
    return std::log(static_cast<double>(count) / unit) / std::log(static_cast<double>(length) / unit);
}

qsizetype plot_span::count_at(double slider) const {
    if (length <= least || slider >= 1)
        return length;
    const auto unit = static_cast<double>(least);
    return static_cast<qsizetype>(
        std::llround(unit * std::pow(static_cast<double>(length) / unit, std::max(0.0, slider))));
}

} // namespace brivant
