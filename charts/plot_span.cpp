#include "charts/plot_span.h"

#include <algorithm>
#include <cmath>

namespace brivant {

plot_span plot_span::with_count(qsizetype wanted, double part) const {
    const qsizetype least = std::min(fewest, rows);
    const qsizetype kept = std::clamp(wanted, least, rows);
    const auto shift = static_cast<qsizetype>(std::llround(part * static_cast<double>(count - kept)));
    return plot_span{rows, first, kept}.moved(shift);
}

plot_span plot_span::moved(qsizetype by) const {
    // Compared before it is added: `by` may be as far as a number goes.
    const qsizetype most = rows - count;
    const qsizetype to = by > most - first ? most : by < -first ? 0 : first + by;
    return {rows, to, count};
}

plot_span plot_span::showing(qsizetype row) const {
    if (row < first)
        return moved(row - first);
    return row >= end() ? moved(row - end() + 1) : *this;
}

double plot_span::slider() const {
    if (rows <= fewest)
        return 1;
    return std::log(static_cast<double>(count) / fewest) / std::log(static_cast<double>(rows) / fewest);
}

qsizetype plot_span::count_at(double slider) const {
    if (rows <= fewest || slider >= 1)
        return rows;
    return static_cast<qsizetype>(
        std::llround(fewest * std::pow(static_cast<double>(rows) / fewest, std::max(0.0, slider))));
}

} // namespace brivant
