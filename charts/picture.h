#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QString>

namespace brivant {

// What the pictures of this folder share. Their coordinates are logical pixels with y growing upward from the
// lower edge; `ratio` is the pixels of the device to one of them.

// A transparent picture; at least one pixel either way.
QImage blank_picture(QSizeF size, double ratio);

// A painter over a picture whose coordinates grow downward, with smooth edges, and the way there from
// coordinates that grow upward. `foot`: how far above the picture's lower edge their y 0 lies.
class picture_painter : public QPainter {
public:
    explicit picture_painter(QImage& picture, double foot = 0);

    QPointF at(double x, double y) const { return {x, height - y}; }
    QPointF at(QPointF place) const { return at(place.x(), place.y()); }
    // `y`: of the lower edge.
    QRectF area(double x, double y, double w, double h) const { return {x, height - y - h, w, h}; }
    QRectF area(const QRectF& upward) const {
        return area(upward.x(), upward.y(), upward.width(), upward.height());
    }

    // `lower_left`: of the line's box, below the descenders.
    void write(QPointF lower_left, const QString& text);
    void write_centred(double x, double y, const QString& text);

private:
    double height; // of y 0 below the upper edge
};

// The letters of the system. `pixels`: their height, as a size in points on a screen of 72 points an inch.
QFont picture_font(double pixels, int weight = QFont::Normal);
// The same, smaller down to `smallest` where the text would be wider than `width`.
QFont fitting_font(double pixels, int weight, const QString& text, double width, double smallest);
// How much larger than it is laid out a picture is drawn, so that its text is as large as `body` asks for; at
// least 1.
double growth_for(const QFont& body);
double text_width(const QFont& font, const QString& text);
QString elided(const QFont& font, const QString& text, double width);

// The PID of an entry of a sample set: "0C" of "0C|7E8".
QString pid_of(const QString& item);

} // namespace brivant
