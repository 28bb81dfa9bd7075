#include "charts/drawO2Sensors.h"

#include "charts/value_text.h"

#include <QPainter>
#include <algorithm>
#include <bit>
#include <cmath>

namespace brivant {

namespace {

constexpr double lean_below = 0.30; // volts
constexpr double rich_above = 0.60;

// clang-format off
constexpr QRectF block_place        {  4,  25,  92, 166}; // from above, as painters count
constexpr QRectF top_bank_place     { 14,  36,  80,  60};
constexpr QRectF bottom_bank_place  { 14, 119,  80,  60};
constexpr QRectF pipe_place         { 92,  55, 356,  22};
constexpr QRectF converter_place    {152,  49,  50,  34};
constexpr QRectF y_pipe_place       {288,  55, 160, 105};
// clang-format on
constexpr double between_banks = 83;
constexpr double dot_radius = 6.5;
constexpr double label_y_1 = 157;
constexpr double label_y_2 = 46;
constexpr double farthest_label = 20; // from a dot; a line leads to one beyond it

// The system's y grows upward.
QPointF from_above(double x, double y) {
    return {x, drawO2Sensors::height - y};
}

enum class weight { plain, bold };

QFont letters(double pixels, weight its_weight = weight::plain) {
    QFont font;
    font.setPixelSize(std::max(1, qRound(pixels)));
    font.setBold(its_weight == weight::bold);
    return font;
}

// `lower_left`: in the picture's units. On whole pixels of the device: letters blur on a scaled painter.
void write(QPainter& painter, QPointF lower_left, const QString& text, double size, weight its_weight,
           const QColor& colour) {
    const QTransform to_device = painter.transform();
    painter.save();
    painter.resetTransform();
    painter.setFont(letters(size * to_device.m11(), its_weight));
    painter.setPen(colour);
    painter.drawText(to_device.map(lower_left).toPoint(), text);
    painter.restore();
}

QColor colour_of(int state) {
    return state < 0 ? QColor(0x2f7fd6) : state > 0 ? QColor(0xd8433b) : QColor(0x8d99a5);
}

QImage blank(double scale) {
    QImage image(qRound(drawO2Sensors::width * scale), qRound(drawO2Sensors::height * scale),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

// A painter in the picture's units.
void prepare(QPainter& painter, double scale) {
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                           QPainter::TextAntialiasing);
    painter.scale(scale, scale);
}

// `part`: how much of the picture is drawn, from its left; the place is that of the whole.
void draw_artwork(QPainter& painter, const char* file, QRectF place, double part = 1) {
    QImage art(QStringLiteral(":/artwork/%1@2x.gif").arg(QLatin1String(file)));
    if (art.isNull())
        return;
    art.setDevicePixelRatio(1);
    const QSizeF pixels = painter.transform().mapRect(place).size();
    if (pixels.width() < art.width())
        art = art.scaled(pixels.toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QRectF source = art.rect();
    source.setWidth(source.width() * part);
    place.setWidth(place.width() * part);
    painter.drawImage(place, art, source);
}

void draw_bank(QPainter& painter, const char* file, const QRectF& place, bool is_first,
               const o2_picture_look& look) {
    draw_artwork(painter, file, place);
    const QRectF head = place.adjusted(-1, 8, 1, -8);
    painter.setPen(QPen(QColor(0xd8433b), 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(head, 6, 6);

    if (is_first)
        write(painter, {head.left() + 2, head.top() - 4}, QStringLiteral("Cyl #1"), 9, weight::bold,
              0xf4f7f9);
    const double y = is_first ? block_place.top() - 3 : block_place.bottom() + 11;
    write(painter, {head.left(), y}, is_first ? QStringLiteral("Bank 1") : QStringLiteral("Bank 2"), 9,
          weight::plain, look.muted);
}

void draw_exhaust(QPainter& painter, const o2_layout& shown, double lower) {
    const double until_the_y = (y_pipe_place.left() + 1 - pipe_place.left()) / pipe_place.width();
    draw_artwork(painter, "pipe_long", pipe_place.translated(0, lower), shown.joined ? until_the_y : 1);
    draw_artwork(painter, "catalytic", converter_place.translated(0, lower));
}

void draw_sign(QPainter& painter, QPointF centre, int state) {
    constexpr double arm = 3;
    painter.setPen(QPen(Qt::white, 1.9, Qt::SolidLine, Qt::RoundCap));
    if (state != 0)
        painter.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
    if (state > 0)
        painter.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
}

void draw_dot(QPainter& painter, QPointF centre, double radius, int state) {
    painter.setPen(QPen(QColor(0x1d242b), 3));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, radius, radius);
    painter.setPen(QPen(Qt::white, 1.4));
    painter.setBrush(colour_of(state));
    painter.drawEllipse(centre, radius, radius);
    draw_sign(painter, centre, state);
}

void draw_snsr_dot(QPainter& painter, int x, int y, bool is_highlighted, int cur_state,
                   const QColor& accent) {
    const QPointF centre = from_above(x, y);
    if (is_highlighted) {
        // Open at the upper right, where the name of a sensor of bank 1 begins.
        constexpr double reach = dot_radius + 2.8;
        const QRectF ring(centre.x() - reach, centre.y() - reach, 2 * reach, 2 * reach);
        painter.setPen(QPen(accent, 2, Qt::SolidLine, Qt::RoundCap));
        painter.setBrush(Qt::NoBrush);
        painter.drawArc(ring, 110 * 16, 285 * 16);
    }
    draw_dot(painter, centre, dot_radius, cur_state);
}

void draw_label(QPainter& painter, const o2_sensor_place& sensor, bool is_highlighted,
                const o2_picture_look& look) {
    const double y = sensor.name[1] == '1' ? label_y_1 : label_y_2;
    if (std::abs(y - sensor.dot_y) > farthest_label) {
        painter.setPen(QPen(look.muted, 1));
        painter.drawLine(from_above(sensor.dot_x, sensor.dot_y), from_above(sensor.dot_x, y - 3));
    }
    write(painter, from_above(sensor.dot_x, y), QLatin1String(sensor.name), 12, weight::bold,
          is_highlighted ? look.accent : look.ink);
}

void draw_value(QPainter& painter, const o2_sensor_place& sensor, const QString& text,
                const o2_picture_look& look) {
    constexpr double size = 12;
    const QPointF left = from_above(sensor.value_x, sensor.value_y);
    const QFontMetricsF metrics(letters(size, weight::bold));
    const QRectF words(left.x(), left.y() - 9, metrics.horizontalAdvance(text), 10);
    QColor plate = look.plate;
    plate.setAlphaF(0.88F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(plate);
    painter.drawRoundedRect(words.adjusted(-3, -1, 3, 1.5), 3, 3);
    write(painter, left, text, size, weight::bold, look.ink);
}

QString volts_text(double volts) {
    return in_locale(QString::number(volts, 'f', 2));
}

void draw_legend(QPainter& painter, const o2_picture_look& look) {
    constexpr double begin = 104, end = drawO2Sensors::width - 4;
    constexpr double before_words = 9, between = 16;
    const QStringList words{QStringLiteral("lean, below %1 V").arg(volts_text(lean_below)),
                            QStringLiteral("between, rear, unknown"),
                            QStringLiteral("rich, above %1 V").arg(volts_text(rich_above))};
    // In hundreds of pixels: the widths of small letters are rounded.
    const auto width_of = [](const QString& text) {
        return QFontMetricsF(letters(100)).horizontalAdvance(text) / 100;
    };
    const double widths = width_of(words.join(QString()));
    const double size = std::min(10.0, (end - begin - 3 * before_words - 2 * between) / widths);
    double x = begin;
    for (int state = -1; state <= 1; ++state) {
        const QString& told = words.at(state + 1);
        draw_dot(painter, from_above(x, 13), 4.8, state);
        write(painter, from_above(x + before_words, 10), told, size, weight::plain, look.muted);
        x += before_words + size * width_of(told) + between;
    }
}

} // namespace

void drawO2Sensors::initO2Charty() {
    mask = 0;
    layout = {};
    names.clear();
    cur_sel = -1;
    chosen.reset();
    values.clear();
    image_without_snsr_vals = image = {};
}

void drawO2Sensors::set_look(double pixels_per_unit, const o2_picture_look& its_look) {
    constexpr double largest = 8; // a picture of some 25 MB
    const double wanted = std::clamp(pixels_per_unit, 0.25, largest);
    if (wanted == scale && its_look == look)
        return;
    scale = wanted;
    look = its_look;
    image_without_snsr_vals = image = {};
}

bool drawO2Sensors::work_out_sensor_lay_out(int its_mask, int cur_sel_idx) {
    const o2_layout its_layout = o2_layout_of(its_mask, banks);
    constexpr int most_sensors = 6;
    const int sensors = std::popcount(static_cast<unsigned>(its_mask));
    const bool fits = sensors > 0 && sensors <= most_sensors;
    const QStringList its_names = fits ? o2_sensor_names(its_mask, banks) : QStringList();
    if (its_mask != mask || its_names != names)
        values.clear();
    mask = its_mask;
    layout = its_layout;
    names = its_names;
    cur_sel = cur_sel_idx;
    image_without_snsr_vals = image = {};
    return fits;
}

void drawO2Sensors::set_sensor_value(int sensor, int this_sel_idx, const QString& this_value) {
    cur_sel = this_sel_idx;
    if (this_value.contains(QLatin1String("nan"), Qt::CaseInsensitive))
        values.remove(sensor);
    else
        values[sensor] = this_value;
    image = {};
}

void drawO2Sensors::select(int sensor) {
    if (chosen == sensor)
        return;
    chosen = sensor;
    image = {};
}

int drawO2Sensors::sensor_count() const {
    return std::popcount(static_cast<unsigned>(mask));
}

QStringList drawO2Sensors::dots_pos() const {
    QStringList dots;
    for (const o2_sensor_place& sensor : layout.places())
        dots += QStringLiteral("%1|%2").arg(sensor.dot_x).arg(sensor.dot_y);
    return dots;
}

int drawO2Sensors::sensor_at(QPointF place) const {
    constexpr double reach = 16; // a finger is wider than a dot
    for (const o2_sensor_place& sensor : layout.places()) {
        if (std::hypot(place.x() - sensor.dot_x, place.y() - sensor.dot_y) <= reach)
            return sensor.index;
    }
    return -1;
}

QString drawO2Sensors::name_of(int sensor) const {
    return names.value(sensor);
}

int drawO2Sensors::state_of(int sensor) const {
    bool is_number = false;
    const double volts = values.value(sensor).toDouble(&is_number);
    const bool is_front = name_of(sensor).endsWith(u'1');
    if (!is_number || !is_front || (switching >> sensor & 1U) == 0)
        return 0;
    return volts < lean_below ? -1 : volts > rich_above ? 1 : 0;
}

QString drawO2Sensors::words_of(int sensor) const {
    const int state = state_of(sensor);
    const QString value = values.value(sensor, QStringLiteral("no value"));
    const char* meaning = state < 0 ? " (lean)" : state > 0 ? " (rich)" : "";
    return name_of(sensor) + QLatin1Char(' ') + value + QLatin1String(meaning);
}

QString drawO2Sensors::in_words() const {
    QStringList words;
    for (int sensor = 0; sensor < sensor_count(); ++sensor)
        words += words_of(sensor);
    return words.join(QStringLiteral(", "));
}

QString drawO2Sensors::beside_the_picture() const {
    const auto places = layout.places();
    QStringList words;
    for (int sensor = 0; sensor < names.size(); ++sensor)
        if (std::none_of(places.begin(), places.end(),
                         [sensor](const o2_sensor_place& place) { return place.index == sensor; }))
            words += words_of(sensor);
    return words.join(QStringLiteral(", "));
}

const QImage& drawO2Sensors::imageRepresentation() {
    if (image_without_snsr_vals.isNull())
        draw_schematic();
    if (image.isNull())
        draw_values();
    return image;
}

void drawO2Sensors::draw_schematic() {
    const o2_layout& shown = layout;
    image_without_snsr_vals = blank(scale);
    QPainter painter(&image_without_snsr_vals);
    prepare(painter, scale);
    draw_artwork(painter, "engine_block", block_place);
    draw_exhaust(painter, shown, 0);
    draw_bank(painter, "cyl_bank_top", top_bank_place, true, look);
    if (shown.two_banks) {
        draw_exhaust(painter, shown, between_banks);
        draw_bank(painter, "cyl_bank_bottom", bottom_bank_place, false, look);
    }
    if (shown.joined)
        draw_artwork(painter, "y_pipe", y_pipe_place);
    if (!names.isEmpty())
        draw_legend(painter, look);
}

void drawO2Sensors::draw_values() {
    image = image_without_snsr_vals.copy();
    QPainter painter(&image);
    prepare(painter, scale);
    for (const o2_sensor_place& sensor : layout.places()) {
        const bool is_highlighted = sensor.index == highlighted();
        draw_label(painter, sensor, is_highlighted, look);
        draw_snsr_dot(painter, sensor.dot_x, sensor.dot_y, is_highlighted, state_of(sensor.index),
                      look.accent);
        if (values.contains(sensor.index))
            draw_value(painter, sensor, in_locale(values.value(sensor.index)), look);
    }
    constexpr QPointF list_place(104, 195);
    write(painter, from_above(list_place.x(), list_place.y()), beside_the_picture(), 11, weight::plain,
          look.ink);
}

} // namespace brivant
