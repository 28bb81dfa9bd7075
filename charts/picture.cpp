#include "charts/picture.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace brivant {

QImage blank_picture(QSizeF size, double ratio) {
    const QSize pixels(std::max(1, static_cast<int>(std::lround(size.width() * ratio))),
                       std::max(1, static_cast<int>(std::lround(size.height() * ratio))));
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    return picture;
}

picture_painter::picture_painter(QImage& picture, double foot)
    : QPainter(&picture), height(picture.deviceIndependentSize().height() - foot) {
    setRenderHints(Antialiasing | TextAntialiasing | SmoothPixmapTransform);
}

void picture_painter::write(QPointF lower_left, const QString& text) {
    drawText(at(lower_left.x(), lower_left.y() + QFontMetricsF(font()).descent()), text);
}

void picture_painter::write_centred(double x, double y, const QString& text) {
    write({x - text_width(font(), text) / 2, y}, text);
}

QFont picture_font(double pixels, int weight) {
    QFont font;
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
    font.setWeight(static_cast<QFont::Weight>(weight));
    return font;
}

QFont fitting_font(double pixels, int weight, const QString& text, double width, double smallest) {
    QFont font = picture_font(pixels, weight);
    while (pixels > smallest && text_width(font, text) > width)
        font = picture_font(--pixels, weight);
    return font;
}

double growth_for(const QFont& body) {
    constexpr double laid_out_for = 13; // pixels
    return std::max(1.0, QFontInfo(body).pixelSize() / laid_out_for);
}

double text_width(const QFont& font, const QString& text) {
    return QFontMetricsF(font).horizontalAdvance(text);
}

QString elided(const QFont& font, const QString& text, double width) {
    return QFontMetricsF(font).elidedText(text, Qt::ElideRight, std::max(0.0, width));
}

QString pid_of(const QString& item) {
    return item.section(u'|', 0, 0);
}

} // namespace brivant
