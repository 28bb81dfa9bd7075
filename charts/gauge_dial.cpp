#include "charts/gauge_dial.h"

#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>
#include <numbers>

namespace brivant {

namespace {

constexpr QPointF centre(182, 182);
constexpr double outer_radius = 176;
constexpr double scale_radius = 161;
constexpr double begin = 220; // degrees
constexpr double whole = 260;
constexpr int ticks = 50;
constexpr int ticks_a_number = 5;

constexpr QColor rim(0x6a, 0x76, 0x82);
constexpr QColor face_middle(0x34, 0x3f, 0x4b);
constexpr QColor face_edge(0x0e, 0x12, 0x17);
constexpr QColor scale_ink(0x45, 0xc2, 0xb5);
constexpr QColor tick_ink(0xb9, 0xc4, 0xce);
constexpr QColor number_tick_ink(0xf6, 0xf8, 0xfa);
constexpr QColor peak_ink(0xf2, 0xc9, 0x4c);

QPointF on_circle(double radius, double radians) {
    return centre + QPointF(radius * std::cos(radians), -radius * std::sin(radians));
}

QPainterPath outline() {
    QPainterPath circle, room, foot;
    circle.addEllipse(centre, outer_radius, outer_radius);
    room.addRect(0, 0, 364, 270);
    foot.addRoundedRect(8, 256, 348, 28, 10, 10);
    return circle.intersected(room).united(foot).simplified();
}

} // namespace

void draw_gauge_dial(QPainter& painter) {
    static const QPainterPath shape = outline();
    QRadialGradient face(centre.x(), centre.y() - 30, outer_radius + 14);
    face.setColorAt(0, face_middle);
    face.setColorAt(1, face_edge);
    painter.setBrush(face);
    painter.setPen(QPen(rim, 3));
    painter.drawPath(shape);

    constexpr int units_a_degree = 16;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(scale_ink, 1.6));
    painter.drawArc(
        QRectF(centre.x() - scale_radius, centre.y() - scale_radius, 2 * scale_radius, 2 * scale_radius),
        static_cast<int>((begin - whole) * units_a_degree), static_cast<int>(whole * units_a_degree));
    for (int tick = 0; tick <= ticks; ++tick) {
        const bool has_number = tick % ticks_a_number == 0;
        const double angle = (begin - whole * tick / ticks) * std::numbers::pi / 180;
        painter.setPen(has_number ? QPen(number_tick_ink, 3.2, Qt::SolidLine, Qt::RoundCap)
                                  : QPen(tick_ink, 1.4, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(on_circle(scale_radius - 4, angle),
                         on_circle(scale_radius - (has_number ? 18 : 11), angle));
    }
}

void draw_gauge_peak(QPainter& painter, double angle) {
    constexpr double half_width = 0.045; // radians
    const QPointF corners[] = {on_circle(scale_radius - 10, angle),
                               on_circle(scale_radius + 9, angle - half_width),
                               on_circle(scale_radius + 9, angle + half_width)};
    painter.setPen(Qt::NoPen);
    painter.setBrush(peak_ink);
    painter.drawPolygon(corners, 3);
}

} // namespace brivant
