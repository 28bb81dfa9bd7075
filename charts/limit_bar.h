#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace brivant {

// The limit bar of a test result: where its value lies between its limits, on a scale of 100 points.

// The place of the value on the scale that runs from 10 to 110: with different limits the minimum is at 35
// and the maximum at 85, with equal ones the limit is at 60. Not brought inside the scale.
double limit_bar_position(double value, double minimum, double maximum);

struct bar_color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const bar_color&) const = default;
};
// Red outside the limits, else green. A value that equals its limit is inside. The misfire flag changes
// nothing.
bar_color work_out_bar_color(double value, double max, double min, bool is_CAN, bool non_can_max,
                             bool is_misfire);

struct limit_bar_look {
    QColor ground{232, 245, 255}; // pale blue
    QColor ink{30, 40, 50};
    double pixel_ratio = 1;
};

// Draws the bar of a row's triple ("minimum~value~maximum", "limit~value~max") at the cell's size in points.
// The range picture is drawn underneath when given.
QImage draw_the_mode6_cues(const QString& limits, QSize size, const limit_bar_look& look,
                           const QImage& range_picture);

} // namespace brivant
