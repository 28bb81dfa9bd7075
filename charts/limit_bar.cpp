#include "charts/limit_bar.h"

#include "obd/number_text.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr double scale_begin = 10;
constexpr double scale_end = 110;
constexpr double base_line_y = 20; // from below, as the system's y grows upward
constexpr double bar_height = 3;
constexpr double minimum_at = 35;
constexpr double maximum_at = 85;
constexpr double limit_at = 60;

struct limits_told {
    double minimum = 0; // the limit, where there is only one
    double value = 0;
    double maximum = 0;
    bool is_can = false;
    bool limit_is_maximum = false;
};

limits_told read_triple(const QString& limits) {
    const QStringList triple = limits.split(u'~');
    const QString kind = triple.value(2);
    limits_told told;
    told.limit_is_maximum = kind == QLatin1String("max");
    told.is_can = !told.limit_is_maximum && kind != QLatin1String("min");
    told.minimum = triple.value(0).toDouble();
    told.value = triple.value(1).toDouble();
    told.maximum = told.is_can ? kind.toDouble() : told.minimum;
    return told;
}

QFont font(int points) {
    QFont chosen;
    chosen.setPixelSize(points);
    return chosen;
}

void draw_tick(QPainter& painter, double x, double y, const QString& label) {
    painter.fillRect(QRectF(x, y - 4, 1, 8), painter.pen().color());
    painter.drawText(QRectF(x - 25, y + 5, 50, 12), Qt::AlignHCenter | Qt::AlignTop, label);
}

} // namespace

double limit_bar_position(double value, double minimum, double maximum) {
    const double range = maximum - minimum;
    if (range != 0)
        return 100 / (2 * range) * (value - (minimum - range / 2)) + scale_begin;
    if (value == maximum)
        return limit_at;
    return maximum == 0 ? (value > 0 ? scale_end : scale_begin) : 100 / (2 * maximum) * value + scale_begin;
}

bar_color work_out_bar_color(double value, double max, double min, bool is_CAN, bool non_can_max,
                             bool is_misfire) {
    Q_UNUSED(is_misfire)
    constexpr bar_color red{1, 0, 0, 1};
    constexpr bar_color green{0, 1, 0, 1};
    const bool above = value > max;
    const bool below = min > value;
    if (is_CAN)
        return above || below ? red : green;
    return (non_can_max ? above : below) ? red : green;
}

QImage draw_the_mode6_cues(const QString& limits, QSize size, const limit_bar_look& look,
                           const QImage& range_picture) {
    const limits_told row = read_triple(limits);
    QImage image(size * look.pixel_ratio, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image; // no room for it
    image.setDevicePixelRatio(look.pixel_ratio);
    image.fill(look.ground);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double height = size.height();
    if (!range_picture.isNull())
        painter.drawImage(QRectF(0, height - 40, 120, 40), range_picture);

    const double place = limit_bar_position(row.value, row.minimum, row.maximum);
    const double x = std::isnan(place) ? scale_begin : std::clamp(place, scale_begin, scale_end);
    const bar_color color =
        work_out_bar_color(row.value, row.maximum, row.minimum, row.is_can, row.limit_is_maximum, false);
    const double y = height - base_line_y;
    painter.setPen(look.ink);
    painter.fillRect(QRectF(scale_begin, y, scale_end - scale_begin, 1), look.ink);
    // A bar without length would not show its color.
    const double length = x > scale_begin ? x - scale_begin : bar_height;
    painter.fillRect(QRectF(scale_begin, y - (bar_height - 1) / 2, length, bar_height),
                     QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                                      static_cast<float>(color.blue), static_cast<float>(color.alpha)));

    painter.setFont(font(8));
    if (row.is_can) {
        draw_tick(painter, minimum_at, y, QStringLiteral("Min"));
        draw_tick(painter, maximum_at, y, QStringLiteral("Max"));
    } else {
        draw_tick(painter, limit_at, y, QStringLiteral("Limit"));
    }
    painter.setFont(font(11));
    const double text_x = std::clamp(x - 30, 0.0, std::max(0.0, size.width() - 60.0));
    painter.drawText(QRectF(text_x, y - 18, 60, 14), Qt::AlignHCenter | Qt::AlignBottom,
                     formatForDisplay(row.value));
    return image;
}

} // namespace brivant
