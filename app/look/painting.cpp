#include "app/look/painting.h"

#include "app/look/theme.h"

#include <QFontInfo>
#include <QPainterPath>

namespace brivant {

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

QFont sized(const QFont& font, double times) {
    QFont result = font;
    result.setPixelSize(std::max(1, qRound(QFontInfo(font).pixelSize() * times)));
    return result;
}

void draw_line(QPainter& painter, const QFont& font, const QColor& colour, const QRect& room,
               const QString& text) {
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(font).elidedText(text, Qt::ElideRight, room.width()));
}

} // namespace brivant
