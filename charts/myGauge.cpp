#include "charts/myGauge.h"

#include "charts/gauge_dial.h"
#include "charts/picture.h"
#include "charts/value_text.h"
#include "toolkit/mac_toolies.h"

#include <QPainterPath>
#include <QRadialGradient>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace brivant {

namespace {

constexpr QSizeF face_size(364, 286);
constexpr QPointF centre(182, 104);
constexpr double angle_at_minimum = 3.839724354387525;   // 220 degrees
constexpr double angle_at_maximum = -0.6981317007977318; // -40 degrees
constexpr double needle_width = 20;
constexpr double needle_length = 140;
constexpr double side_point = 0.7; // of the needle's width
constexpr double hub_radius = 22;
constexpr double shadow_blur = 10;
constexpr double scale_font_size = 30;

const QColor needle_lit = QColor::fromRgbF(1, 0.12549019607843137f, 0.12549019607843137f, 0.9f);
const QColor needle_shaded = QColor::fromRgbF(1, 0.18823529411764706f, 0.18823529411764706f, 0.9f);
const QColor hub_grey = QColor::fromRgbF(0.5333333333333333f, 0.5333333333333333f, 0.5333333333333333f, 0.8f);
const QColor under_hub(0x16, 0x1b, 0x20);

// A scale number: its lower-left corner, or the middle of its lower edge.
struct number_place {
    double x;
    double y;
    bool is_centred;
};
constexpr std::array<number_place, 11> number_places{{{100, 24, false},
                                                      {75, 66, false},
                                                      {70, 118, false},
                                                      {88, 150, false},
                                                      {125, 180, false},
                                                      {160, 200, false},
                                                      {205, 180, false},
                                                      {255, 150, true},
                                                      {275, 118, true},
                                                      {272, 66, true},
                                                      {245, 24, true}}};

QString scale_number(int index, int lowest, int highest) {
    const double value = lowest + index * (highest - lowest) / 10.0;
    return highest - lowest >= 10 ? QString::number(static_cast<int>(std::trunc(value)))
                                  : in_locale(QString::number(value, 'f', 1));
}

QFont scale_font() {
    return picture_font(scale_font_size);
}

// Smaller where it would run into the numbers at the ends of the scale. Leaves the painter with the scale's
// font.
void write_unit(picture_painter& painter, double middle, const QString& unit, int lowest, int highest) {
    constexpr double gap = 4;
    constexpr double smallest = 16;
    const double first_ends =
        number_places.front().x + text_width(scale_font(), scale_number(0, lowest, highest));
    const double last_begins =
        number_places.back().x - text_width(scale_font(), scale_number(10, lowest, highest)) / 2;
    const double room = 2 * (std::min(middle - first_ends, last_begins - middle) - gap);
    painter.setPen(Qt::yellow);
    painter.setFont(fitting_font(scale_font_size, QFont::Normal, unit.trimmed(), room, smallest));
    painter.write_centred(middle, 15, unit.trimmed());
    painter.setFont(scale_font());
}

// The art at twice its size, so that it is sharp on every screen.
QImage artwork(const QString& name) {
    QImage art(QStringLiteral(":/artwork/") + name);
    art.setDevicePixelRatio(2);
    return art;
}

// What a blurred disc throws around the hub.
void draw_red_shadow(QPainter& painter, QPointF at) {
    const double reach = hub_radius + 1.5 * shadow_blur;
    QRadialGradient shadow(at, reach);
    for (double radius = 0; radius <= reach; radius += 1.5) {
        const double sigma = shadow_blur / 2;
        const double share = 0.5 * std::erfc((radius - hub_radius) / (sigma * std::numbers::sqrt2));
        shadow.setColorAt(radius / reach,
                          QColor::fromRgbF(1, 0, 0, static_cast<float>(share * hub_grey.alphaF())));
    }
    shadow.setColorAt(1, QColor::fromRgbF(1, 0, 0, 0));
    painter.setBrush(shadow);
    painter.drawEllipse(at, reach, reach);
}

void draw_hub(picture_painter& painter, double x, double y) {
    static const QImage brushed = artwork(QStringLiteral("brushed_circle@2x.png"));
    const QRectF square = painter.area(x - hub_radius, y - hub_radius, 2 * hub_radius, 2 * hub_radius);
    painter.setPen(Qt::NoPen);
    painter.setBrush(hub_grey);
    painter.drawEllipse(square);
    draw_red_shadow(painter, painter.at(x, y));
    painter.setBrush(hub_grey);
    painter.drawEllipse(square);
    // Exclusive or over an opaque picture takes away as much as the art is opaque; a dark ground then shows.
    painter.setCompositionMode(QPainter::CompositionMode_Xor);
    painter.drawImage(square, brushed);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.setBrush(under_hub);
    painter.drawEllipse(square);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

} // namespace

gauge_needle gauge_needle_for(QPointF at, double this_val, double alpha_min, double alpha_max, double min_val,
                              double max_val, double needle_w, double needle_h) {
    const double per_unit = std::fabs((alpha_min - alpha_max) / (max_val - min_val));
    double angle = alpha_min - per_unit * this_val;
    if (min_val < 0)
        angle = alpha_min - std::fabs((alpha_min - alpha_max) * min_val / (max_val - min_val)) -
                per_unit * this_val;
    const auto off = [at](double distance, double direction) {
        return at + QPointF(distance * std::cos(direction), distance * std::sin(direction));
    };
    constexpr double quarter = std::numbers::pi / 2;
    return {angle, off(needle_h, angle), off(side_point * needle_w, angle - quarter),
            off(side_point * needle_w, angle + quarter)};
}

void myGauge::initGauge(const QString& pid) {
    cur_PID = pid_of(pid);
    peak = std::numeric_limits<double>::quiet_NaN();
    draw_face();
    draw_cur_needle_value(toolies.get_PID_min_max(cur_PID, false));
}

void myGauge::swapCurGaugeBack(const QString& pid) {
    initGauge(pid);
}

void myGauge::set_pixel_ratio(double pixels) {
    constexpr double least = 0.25, most = 8;
    pixels = std::isfinite(pixels) ? std::clamp(pixels, least, most) : 1;
    if (pixels == ratio)
        return;
    ratio = pixels;
    if (image.isNull())
        return;
    draw_face();
    draw_cur_needle_value(last_OBD_val);
}

void myGauge::draw_face() {
    gaugeSize = face_size.width();
    image_without_needle = blank_picture(face_size, ratio);
    picture_painter painter(image_without_needle);
    draw_gauge_dial(painter);
    painter.end();
    work_out_base_gauge();
}

void myGauge::work_out_base_gauge() {
    bool is_pid = false;
    const int number = cur_PID.toInt(&is_pid, 16);
    if (!is_pid)
        return;
    const gauge_scale scale = gauge_range(number, toolies.units() == unit_system::metric);
    range_lo = scale.minimum;
    range_hi = scale.maximum;
    range_scaling = scale.scaling;

    picture_painter painter(image_without_needle);
    painter.setFont(scale_font());
    painter.setPen(Qt::white);
    for (int index = 0; index < static_cast<int>(number_places.size()); ++index) {
        const number_place& place = number_places[static_cast<size_t>(index)];
        const QString text = scale_number(index, range_lo, range_hi);
        if (place.is_centred)
            painter.write_centred(place.x, place.y, text);
        else
            painter.write({place.x, place.y}, text);
    }
    write_unit(painter, gaugeSize / 2, toolies.shown_units(cur_PID), range_lo, range_hi);
    if (range_scaling != 1) {
        constexpr double between_needles = 84; // that lie at the ends of the scale
        const QString times = QStringLiteral("x %1").arg(range_scaling);
        painter.setFont(fitting_font(scale_font_size, QFont::Normal, times, between_needles, 14));
        painter.write_centred(gaugeSize / 2, 45, times);
    }
}

void myGauge::draw_cur_needle_value(double value) {
    if (image_without_needle.isNull())
        return; // no PID yet
    image = image_without_needle;
    last_OBD_val = value;
    draw_gauge_needle_raw(centre.x(), centre.y(), value / range_scaling, angle_at_minimum, angle_at_maximum,
                          range_lo, range_hi, needle_width, needle_length);
}

void myGauge::draw_gauge_needle_raw(double at_x, double at_y, double this_val, double alpha_min,
                                    double alpha_max, double min_val, double max_val, double needle_w,
                                    double needle_h) {
    picture_painter painter(image);
    if (std::isfinite(peak)) {
        const double shown = std::clamp(peak / range_scaling, min_val, max_val);
        draw_gauge_peak(painter, gauge_needle_for({at_x, at_y}, shown, alpha_min, alpha_max, min_val, max_val,
                                                  needle_w, needle_h)
                                     .angle);
    }
    if (std::isfinite(this_val)) {
        const gauge_needle needle = gauge_needle_for({at_x, at_y}, this_val, alpha_min, alpha_max, min_val,
                                                     max_val, needle_w, needle_h);
        const auto half = [&](QPointF side, const QColor& colour) {
            QPainterPath path(painter.at(at_x, at_y));
            path.lineTo(painter.at(side));
            path.lineTo(painter.at(needle.tip));
            path.closeSubpath();
            painter.fillPath(path, colour);
        };
        half(needle.left, needle_lit);
        half(needle.right, needle_shaded);
    }
    draw_hub(painter, at_x, at_y);
}

} // namespace brivant
