#pragma once

#include <QtGlobal>

namespace brivant {

// Which sweeps of a run a chart shows: `count` of them from `first` on, always within the run, and never
// fewer than `fewest` where the run has as many.
struct plot_span {
    static constexpr qsizetype fewest = 20;

    qsizetype rows = 0; // of the run
    qsizetype first = 0;
    qsizetype count = 0;

    static plot_span all_of(qsizetype rows) { return {rows, 0, rows}; }
    qsizetype end() const { return first + count; }
    bool is_all() const { return count == rows; }
    bool contains(qsizetype row) const { return row >= first && row < end(); }
    bool operator==(const plot_span&) const = default;

    // As many sweeps as that. What lies at `part` of the width (0 to 1) stays where it is, as far as the
    // run's ends allow.
    plot_span with_count(qsizetype wanted, double part) const;
    plot_span moved(qsizetype by) const;
    // Moved no farther than it takes to show the row.
    plot_span showing(qsizetype row) const;

    // Where a zoom slider stands: 0 for the fewest sweeps, 1 for all, equal ways for equal factors.
    double slider() const;
    qsizetype count_at(double slider) const;
};

} // namespace brivant
