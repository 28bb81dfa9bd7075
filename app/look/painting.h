#pragma once

#include <QImage>
#include <QPainter>
#include <QPixmap>

namespace brivant {

// The image scaled to fill the room, in its middle, with round corners. `ratio`: pixels of the device to one
// of the window.
QPixmap rounded_picture(const QImage& image, const QSize& room, double ratio);

// One line of text in the room, cut with "..." where that ends.
void draw_line(QPainter& painter, const QFont& font, const QColor& colour, const QRect& room,
               const QString& text);

} // namespace brivant
