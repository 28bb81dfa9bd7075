#include "charts/sample_matrix.h"

#include <algorithm>

namespace brivant {

void series_summary::append(const series_summary& later) {
    if (later.empty())
        return;
    if (empty()) {
        *this = later;
        return;
    }
    minimum = std::min(minimum, later.minimum);
    maximum = std::max(maximum, later.maximum);
    last = later.last;
}

void series_summary::append(double value) {
    if (!std::isnan(value))
        append(series_summary{value, value, value, value});
}

} // namespace brivant
