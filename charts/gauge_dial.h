#pragma once

#include <QPainter>

namespace brivant {

// The dial of a round gauge without its numbers: 364 by 286, its centre at 182, 182 from above, its scale
// from 220 degrees over the top to -40.
void draw_gauge_dial(QPainter& painter);

// A mark on the scale, at an angle in radians, counter-clockwise from the right.
void draw_gauge_peak(QPainter& painter, double angle);

} // namespace brivant
