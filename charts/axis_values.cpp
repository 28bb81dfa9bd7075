#include "charts/axis_values.h"

#include "charts/value_text.h"

#include <algorithm>
#include <cmath>

namespace brivant {

axis_values axis_values::between(double minimum, double maximum, int wanted) {
    axis_values axis;
    const double span = maximum - minimum;
    if (!(span > 0) || !std::isfinite(span) || wanted < 1)
        return axis;
    const double least = span / wanted;
    const double decade = std::pow(10, std::floor(std::log10(least)));
    double step = 10 * decade;
    for (const double factor : {5.0, 2.5, 2.0, 1.0})
        if (factor * decade >= least * (1 - 1e-9))
            step = factor * decade;
    const bool half_figure = std::abs(step / decade - 2.5) < 0.01;
    axis.decimals =
        std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)) + (half_figure ? 1 : 0), 0, 9);

    // Counted, so that no error adds up.
    const double begin = std::ceil(minimum / step - 1e-6);
    const double end = std::floor(maximum / step + 1e-6);
    for (double count = begin; count <= end; ++count)
        axis.values.append(count * step + 0.0);
    return axis;
}

QString axis_values::text(double value) const {
    return in_locale(QString::number(value, 'f', decimals));
}

QString short_number(double value) {
    const double size = std::fabs(value);
    return in_locale(QString::number(value, 'f',
                                     size >= 1000  ? 0
                                     : size >= 100 ? 1
                                     : size >= 10  ? 1
                                     : size >= 1   ? 2
                                                   : 3));
}

} // namespace brivant
