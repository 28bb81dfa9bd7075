#pragma once

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPixmap>

namespace brivant {

// The image scaled to fill the room, in its middle, with round corners. `ratio`: pixels of the device to one
// of the window.
QPixmap rounded_picture(const QImage& image, const QSize& room, double ratio);

// Of the body's size: what is read from afar, and what heads something.
constexpr double display_size = 2.2;
constexpr double heading_size = 1.4;
// `font` that many times as large, its size in pixels.
QFont sized(const QFont& font, double times);

// One line of text in the room, cut with "..." where that ends.
void draw_line(QPainter& painter, const QFont& font, const QColor& colour, const QRect& room,
               const QString& text);

} // namespace brivant
