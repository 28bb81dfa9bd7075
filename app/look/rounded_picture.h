#pragma once

#include <QImage>
#include <QPixmap>

// The image scaled to fill the room, in its middle, with round corners. `ratio`: pixels of the device to one
// of the window.
QPixmap rounded_picture(const QImage& image, const QSize& room, double ratio);
