#include "app/look/rounded_picture.h"

#include "app/look/theme.h"

#include <QPainter>
#include <QPainterPath>

QPixmap rounded_picture(const QImage& image, const QSize& room, double ratio) {
    QPixmap result(room * ratio);
    result.setDevicePixelRatio(ratio);
    result.fill(Qt::transparent);
    const QSizeF fitted = QSizeF(image.size()).scaled(room, Qt::KeepAspectRatio);
    const QRectF place(QPointF((room.width() - fitted.width()) / 2, (room.height() - fitted.height()) / 2),
                       fitted);
    QPainter painter(&result);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath outline;
    outline.addRoundedRect(place, theme::step, theme::step);
    painter.setClipPath(outline);
    painter.drawImage(place, image);
    return result;
}
