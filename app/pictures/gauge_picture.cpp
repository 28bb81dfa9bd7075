#include "app/pictures/gauge_picture.h"

#include <QPainter>
#include <algorithm>

namespace brivant {

gauge_picture::gauge_picture(QWidget* parent) : QWidget(parent) {}

void gauge_picture::set_up(const mac_toolies& toolies) {
    gauge.emplace(toolies);
}

void gauge_picture::show_sample(const sample_row& row) {
    gauge->initGauge(row.pid);
    setAccessibleName(QStringLiteral("Gauge: %1").arg(row.name));
    setToolTip(row.name);
    has_value = false;
    if (!row.value.isEmpty())
        set_value(row);
    setAccessibleDescription(row.value);
    update();
}

void gauge_picture::set_value(const sample_row& row) {
    value = row.latest;
    has_value = true;
    stale = true;
    setAccessibleDescription(row.value);
}

void gauge_picture::draw_new() {
    if (std::exchange(stale, false) && isVisible())
        update();
}

QRectF gauge_picture::place() const {
    const QSizeF size = QSizeF(face).scaled(this->size(), Qt::KeepAspectRatio);
    return {QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void gauge_picture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF room = place();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // A painter takes a picture of less than a pixel to a point for one of a pixel.
    gauge->set_pixel_ratio(
        std::max(1.0, room.width() / face.width() * painter.device()->devicePixelRatioF()));
    const bool is_new = !(gauge->last_value() == value || (qIsNaN(gauge->last_value()) && qIsNaN(value)));
    if (has_value && is_new)
        gauge->draw_cur_needle_value(value);
    painter.drawImage(room, gauge->imageRepresentation());
}

} // namespace brivant
