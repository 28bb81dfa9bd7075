#include "app/pictures/gauge_picture.h"

#include "app/look/painting.h"
#include "base/shared_types.h"

#include <QPainter>
#include <algorithm>

namespace brivant {

namespace {

constexpr QSizeF face(364, 286);
constexpr int gap = 4;
constexpr double value_part = 0.13;     // of the height, where that is more than a heading
constexpr double letters_of_line = 0.8; // of the height of a line

} // namespace

gauge_picture::gauge_picture(QWidget* parent) : QWidget(parent) {}

void gauge_picture::set_up(const mac_toolies& toolies) {
    gauge.emplace(toolies);
}

void gauge_picture::show_sample(const live_results& results, int index) {
    const sample_row& row = results.these_samples.at(index);
    gauge->initGauge(row.pid);
    name = row.name;
    setAccessibleName(QStringLiteral("Gauge: %1").arg(name));
    setToolTip(name);
    has_value = false;
    set_value(results, index);
    has_value = !row.value.isEmpty();
    update();
}

void gauge_picture::set_value(const live_results& results, int index) {
    const sample_row& row = results.these_samples.at(index);
    gauge->set_peak(results.cur_log_points.extremes_with_first(index).maximum);
    value = row.latest;
    shown = shown_value(row.value, row.latest, row.units == not_available ? QString() : row.units.trimmed());
    has_value = true;
    stale = true;
    setAccessibleDescription(row.value);
}

void gauge_picture::draw_new() {
    if (std::exchange(stale, false) && isVisible())
        update();
}

int gauge_picture::name_height() const {
    return fontMetrics().height() + gap;
}

int gauge_picture::value_height(int whole) const {
    return std::max(QFontMetrics(sized(font(), heading_size)).height(), qRound(whole * value_part)) + gap;
}

int gauge_picture::width_for(int height) const {
    return qRound((height - name_height() - value_height(height)) * face.width() / face.height());
}

QRectF gauge_picture::dial_place() const {
    const QRectF room(0, name_height(), width(),
                      std::max(1, height() - name_height() - value_height(height())));
    const QSizeF size = face.scaled(room.size(), Qt::KeepAspectRatio);
    return {QPointF((width() - size.width()) / 2, room.top() + (room.height() - size.height()) / 2), size};
}

void gauge_picture::draw_words(QPainter& painter, const QRectF& dial) const {
    QFont strong = font();
    strong.setWeight(QFont::DemiBold);
    painter.setFont(strong);
    painter.setPen(palette().color(QPalette::WindowText));
    const QRectF above(0, dial.top() - name_height(), width(), name_height());
    painter.drawText(above, Qt::AlignCenter, painter.fontMetrics().elidedText(name, Qt::ElideRight, width()));

    const QString words = (shown.number + u' ' + shown.unit).trimmed();
    QFont large = sized(strong, heading_size);
    large.setPixelSize(
        std::max(large.pixelSize(), static_cast<int>((value_height(height()) - gap) * letters_of_line)));
    while (large.pixelSize() > 8 && QFontMetrics(large).horizontalAdvance(words) > width())
        large.setPixelSize(large.pixelSize() - 1);
    painter.setFont(large);
    painter.drawText(QRectF(0, dial.bottom(), width(), height() - dial.bottom()),
                     Qt::AlignHCenter | Qt::AlignTop, words);
}

void gauge_picture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF dial = dial_place();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // A painter takes a picture of less than a pixel to a point for one of a pixel.
    gauge->set_pixel_ratio(
        std::max(1.0, dial.width() / face.width() * painter.device()->devicePixelRatioF()));
    const bool is_new = !(gauge->last_value() == value || (qIsNaN(gauge->last_value()) && qIsNaN(value)));
    if (has_value && is_new)
        gauge->draw_cur_needle_value(value);
    painter.drawImage(dial, gauge->imageRepresentation());
    draw_words(painter, dial);
}

} // namespace brivant
