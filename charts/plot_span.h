#pragma once

#include <QtGlobal>

namespace brivant {

// Which part of a run a chart shows: `count` milliseconds of it (sweeps, of a run without times) from `first`
// on, always within the run, and never fewer than `least` where the run has as many.
struct plot_span {
    qsizetype length = 0; // of the run
    qsizetype first = 0;
    qsizetype count = 0;
    qsizetype least = 1;

    static plot_span all_of(qsizetype length, qsizetype least) { return {length, 0, length, least}; }
    plot_span all() const { return all_of(length, least); }
    qsizetype end() const { return first + count; }
    bool is_all() const { return count == length; }
    bool contains(double at) const {
        return at >= static_cast<double>(first) && at < static_cast<double>(end());
    }
    bool operator==(const plot_span&) const = default;

    // As much as that. What lies at `part` of the width (0 to 1) stays where it is, as far as the
    // run's ends allow.
    plot_span with_count(qsizetype wanted, double part) const;
    plot_span moved(qsizetype by) const;
    // Moved no farther than it takes to show that place.
    plot_span showing(qsizetype at) const;

    // Where a zoom slider stands: 0 for the least, 1 for all, equal ways for equal factors.
    double slider() const;
    qsizetype count_at(double slider) const;
};

} // namespace brivant
