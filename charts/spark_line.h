#pragma once

#include "charts/sample_matrix.h"

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace brivant {

// The last minute of one series, as high as its values ask for; broken where a gap lies. `ratio`: pixels of
// the device to one of the painter.
void draw_spark_line(QPainter& painter, const sample_matrix& matrix, int column, const QRectF& room,
                     const QColor& colour, double ratio);

} // namespace brivant
