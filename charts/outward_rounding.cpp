#include "charts/outward_rounding.h"

#include <algorithm>
#include <cmath>

namespace brivant {

double round_outward(double value, bool as_maximum) {
    if (!std::isfinite(value))
        return value;
    const double size = std::fabs(value);
    const double scale = size > 1 ? 1 : 100;
    const double scaled = size > 1 ? size : std::trunc(100 * size);
    if (scaled < 1)
        return 0;
    double step = 1;
    while (step < 10000 && scaled >= 10 * step)
        step *= 10;
    const double away = as_maximum == (value > 0) ? 1 : -1;
    const double rounded = (std::trunc(scaled / step) + away) * step / scale;
    return (value < 0 ? -rounded : rounded) + 0.0; // no minus before a zero
}

} // namespace brivant
