#include "app/pictures/o2_picture.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace brivant {

o2_picture::o2_picture(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Exhaust with its oxygen sensors"));
    sensors.initO2Charty();
}

void o2_picture::set_look(const theme& its_look) {
    colours = {its_look.text, its_look.muted, its_look.card, its_look.accent};
    update();
}

QRectF o2_picture::place() const {
    constexpr double room_around = theme::step;
    const double scale = std::min((width() - 2 * room_around) / drawO2Sensors::width,
                                  (height() - 2 * room_around) / drawO2Sensors::height);
    const QSizeF size = QSizeF(drawO2Sensors::width, drawO2Sensors::height) * std::max(scale, 0.1);
    return {QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void o2_picture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF room = place();
    const double ratio = painter.device()->devicePixelRatioF();
    sensors.set_look(room.width() / drawO2Sensors::width * ratio, colours);
    // Pixel by pixel: letters suffer when it is stretched by a fraction of one.
    const QImage& picture = sensors.imageRepresentation();
    painter.drawImage(QRectF(room.topLeft().toPoint(), QSizeF(picture.size()) / ratio), picture);
    setAccessibleDescription(sensors.in_words());
}

void o2_picture::mousePressEvent(QMouseEvent* event) {
    const QRectF room = place();
    const double scale = drawO2Sensors::width / room.width();
    const QPointF at = (event->position() - room.topLeft()) * scale;
    const int sensor = sensors.sensor_at({at.x(), drawO2Sensors::height - at.y()});
    if (event->button() == Qt::LeftButton && sensor >= 0)
        Q_EMIT sensor_chosen(sensor);
    else
        QWidget::mousePressEvent(event);
}

} // namespace brivant
