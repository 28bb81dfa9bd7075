// The frame, grid, axes and value boxes of drawChartyItem.

#include "charts/axis_values.h"
#include "charts/drawChartyItem.h"
#include "charts/picture.h"
#include "charts/time_axis.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <algorithm>

namespace brivant {

namespace {

constexpr QRgb ground_top = 0xff28323e;
constexpr QRgb ground_bottom = 0xff12171d;
constexpr QRgb plot_ground = 0x38000000;
constexpr QRgb frame = 0xff3d4955;
constexpr QRgb highlight = 0xff45c2b5;
constexpr QRgb grid_line = 0x30ffffff;
constexpr QRgb grid_line_across = 0x16ffffff;
constexpr QRgb box_ground = 0x14ffffff;
constexpr QRgb bright = 0xfff4f7fa;
constexpr QRgb text = 0xffd2dae2;
constexpr QRgb dim = 0xff94a1ae;

constexpr double corner = 10;
constexpr double pad = 14;
constexpr double head = 42;
constexpr double low_head = 28; // of a chart that has no room to spare
constexpr double low_chart = 260;
constexpr double foot_of_chart = 30;
constexpr double foot_of_thumbnail = 9;
constexpr double head_of_thumbnail = 50;
constexpr double axis_font = 12;
constexpr double least_axis = 40;
constexpr qsizetype most_axes = 4;
constexpr int divisions_across = 8;
constexpr double pixels_per_time = 90;
constexpr double pixels_per_axis_value = 44;
constexpr double least_per_axis_value = 24; // in a low chart
constexpr int few_axis_values = 4;
constexpr double box_gap = 8;
constexpr double full_box = 150;
constexpr double box_with_extremes = 142;

QColor colour(QRgb value) {
    return QColor::fromRgba(value);
}

// How many axis values a plot of this height has room for.
int values_beside(double height) {
    return std::max(static_cast<int>(height / pixels_per_axis_value),
                    std::min(static_cast<int>(height / least_per_axis_value), few_axis_values));
}

double head_of(double height) {
    return height < low_chart ? low_head : head;
}

double box_width(double width) {
    return std::clamp(width * 0.22, 108.0, 190.0);
}

void write_in(picture_painter& painter, const QFont& font, QRgb ink, QPointF lower_left, const QString& words,
              double width) {
    painter.setFont(font);
    painter.setPen(colour(ink));
    painter.write(lower_left, elided(font, words, width));
}

} // namespace

double drawChartyItem::foot() const {
    return is_thumbnail ? foot_of_thumbnail : foot_of_chart;
}

QRectF drawChartyItem::plot_area() const {
    return {drawSizes.left(), image.deviceIndependentSize().height() - foot() - drawSizes.bottom(),
            drawSizes.width(), drawSizes.height()};
}

// While no value came the ends stand the wrong way round; the axis shows them nevertheless.
drawChartyItem::value_range drawChartyItem::axis_ends(const chart_label& label) {
    const value_range range = rounded_range(label);
    return range.is_inverted() ? value_range{range.maximum, range.minimum} : range;
}

void drawChartyItem::draw_grid(const chart_labels& labels, const QString& this_title) {
    const QList<int> columns = plotted(labels);
    work_out_drawing_sizes(labels, columns);
    image.fill(Qt::transparent);
    picture_painter painter(image, foot());
    draw_background(painter);

    const QSizeF size = image.deviceIndependentSize();
    if (is_thumbnail) {
        draw_grid_lines(painter, {0, 0});
        const QString name = columns.isEmpty() ? this_title : labels[columns.constFirst()].name;
        write_in(painter, picture_font(12), text, {pad, size.height() - foot() - 23}, name,
                 size.width() - 2 * pad);
        return;
    }
    write_in(
        painter, picture_font(15, QFont::DemiBold), text,
        {pad + 2, size.height() - foot() - head_of(size.height()) + (size.height() < low_chart ? 5 : 10)},
        this_title, size.width() - 2 * pad);
    draw_grid_lines(painter, columns.isEmpty() ? value_range{0, 0} : axis_ends(labels[columns.constFirst()]));
    double x_guide = drawSizes.left();
    for (const int column : columns.first(std::min(columns.size(), most_axes))) {
        const value_range ends = axis_ends(labels[column]);
        print_axis_values_4_grid(painter, ends.maximum, ends.minimum, labels[column], x_guide, column);
        x_guide -= get_width_of_axis_label(ends.maximum, ends.minimum);
    }
}

void drawChartyItem::work_out_drawing_sizes(const chart_labels& labels, const QList<int>& columns) {
    if (!chosen_sizes.isNull()) {
        drawSizes = chosen_sizes;
        return;
    }
    const QSizeF size = image.deviceIndependentSize();
    if (is_thumbnail) {
        drawSizes =
            QRectF(pad - 4, 0, size.width() - 2 * pad + 8, size.height() - foot() - head_of_thumbnail);
        return;
    }
    double left = pad;
    for (const int column : columns.first(std::min(columns.size(), most_axes))) {
        const value_range ends = axis_ends(labels[column]);
        left += get_width_of_axis_label(ends.maximum, ends.minimum);
    }
    left = std::round(std::max(left, pad + least_axis));
    const double right = std::round(size.width() - box_width(size.width()) - 2 * pad);
    drawSizes = QRectF(left, 0, std::max(1.0, right - left),
                       std::max(1.0, size.height() - foot() - head_of(size.height())));
}

void drawChartyItem::draw_background(picture_painter& painter) const {
    const QSizeF size = image.deviceIndependentSize();
    const bool selected = is_thumbnail && is_thumb_selected;
    const double pen = selected ? 3 : 1;
    QLinearGradient ground(0, 0, 0, size.height());
    ground.setColorAt(0, colour(ground_top));
    ground.setColorAt(1, colour(ground_bottom));
    painter.setPen(QPen(colour(selected ? highlight : frame), pen));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF({0, 0}, size).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), corner,
                            corner);
}

void drawChartyItem::draw_grid_lines(picture_painter& painter, const value_range& ends) const {
    const QRectF plot = painter.area(drawSizes);
    painter.fillRect(plot, colour(plot_ground));
    if (is_thumbnail) {
        painter.setPen(colour(grid_line));
        painter.drawLine(plot.bottomLeft(), plot.bottomRight());
        return;
    }
    painter.setPen(QPen(colour(grid_line_across), 1, Qt::DashLine));
    for (int division = 1; division < divisions_across && !maps_time; ++division) {
        const double x = crisp(plot.left() + plot.width() * division / divisions_across);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    painter.setPen(QPen(colour(grid_line), 1, Qt::DashLine));
    const int wanted = values_beside(drawSizes.height());
    for (const double value : axis_values::between(ends.minimum, ends.maximum, wanted).values) {
        const double y =
            crisp(plot.bottom() - plot.height() * (value - ends.minimum) / (ends.maximum - ends.minimum));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    }
    painter.setPen(QPen(colour(frame), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(QPointF(crisp(plot.left()), crisp(plot.top())),
                            QPointF(crisp(plot.right()), crisp(plot.bottom()))));
}

double drawChartyItem::crisp(double logical) const {
    const double ratio = image.devicePixelRatio();
    return (std::floor(logical * ratio) + 0.5) / ratio;
}

// A run of which no time is known has its sweep numbers there.
void drawChartyItem::draw_time_lines(picture_painter& painter, const plot_range& range, bool is_known) const {
    const QRectF plot = painter.area(drawSizes);
    const QFont font = picture_font(axis_font);
    painter.setFont(font);
    const int wanted = std::max(1, static_cast<int>(plot.width() / pixels_per_time));
    const time_axis axis = time_axis::between(range.from, range.to, wanted);
    const QList<double> places =
        is_known ? axis.moments : axis_values::between(range.from + 1, range.to + 1, wanted).values;
    double free_from = 0; // what an end of the row needs is not written over
    for (const double at : places) {
        const double ms = is_known ? at : at - 1;
        const double x = crisp(plot.left() + plot.width() * (ms - range.from) / (range.to - range.from));
        painter.setPen(QPen(colour(grid_line_across), 1, Qt::DashLine));
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        const QString words =
            is_known ? clock_text(ms, axis.decimals) : QStringLiteral("sweep %1").arg(qRound64(at));
        const double width = text_width(font, words);
        const double left = std::max(4.0, x - width / 2);
        if (left < free_from || left + width > image.deviceIndependentSize().width())
            continue;
        painter.setPen(colour(dim));
        painter.write({left, drawSizes.top() - 21}, words);
        free_from = left + width + pad;
    }
}

double drawChartyItem::get_width_of_axis_label(double cur_max, double cur_min) {
    const QFont font = picture_font(axis_font);
    const axis_values axis = axis_values::between(cur_min, cur_max, 5);
    return 14 + std::max(text_width(font, axis.text(cur_max)), text_width(font, axis.text(cur_min)));
}

// The values stand left of x_guide, with a mark each in the colour of a group's member.
void drawChartyItem::print_axis_values_4_grid(picture_painter& painter, double cur_max, double cur_min,
                                              const chart_label& cur_label, double x_guide,
                                              int this_idx) const {
    const QFont font = picture_font(axis_font);
    painter.setFont(font);
    const QColor ink = is_group() ? setMyColor(this_idx) : colour(dim);
    const int wanted = values_beside(drawSizes.height());
    axis_values axis = axis_values::between(cur_min, cur_max, wanted);
    if (axis.values.isEmpty() && cur_label.maximum == cur_label.minimum)
        axis.values.append(cur_min);
    painter.setPen(ink);
    for (const double value : axis.values) {
        const double part = cur_max > cur_min ? (value - cur_min) / (cur_max - cur_min) : 0;
        const double y = drawSizes.top() + drawSizes.height() * part;
        const QString words = axis.text(value);
        painter.write({x_guide - 8 - text_width(font, words), y - axis_font * 0.58}, words);
        painter.drawLine(painter.at(x_guide - 4, y), painter.at(x_guide, y));
    }
}

// `first`, `last`: counted from 1. The last row of a run that goes on is the sweep under way.
void drawChartyItem::print_sweep_numbers(picture_painter& painter, qsizetype first, qsizetype last,
                                         bool has_points) const {
    const QFont font = picture_font(axis_font);
    painter.setFont(font);
    painter.setPen(colour(dim));
    if (!has_points) {
        painter.setFont(picture_font(15));
        painter.write_centred(drawSizes.center().x(), drawSizes.center().y(),
                              QStringLiteral("No values yet"));
        return;
    }
    const QString from = QString::number(first);
    const QString to = QString::number(last);
    const double y = drawSizes.top() - 21;
    painter.write({drawSizes.left(), y}, QStringLiteral("sweep ") + from);
    painter.write({drawSizes.right() - text_width(font, to), y}, to);
}

void drawChartyItem::display_value(picture_painter& painter, const chart_labels& labels,
                                   const QList<int>& columns, const QList<series_summary>& values) const {
    if (columns.isEmpty())
        return;
    const QSizeF size = image.deviceIndependentSize();
    const double width = box_width(size.width());
    const double left = size.width() - width - pad;
    const auto count = static_cast<double>(columns.size());
    const double height = std::min(full_box, (drawSizes.height() - (count - 1) * box_gap) / count);
    double top = drawSizes.bottom();
    for (qsizetype place = 0; place < columns.size(); ++place, top -= height + box_gap)
        draw_value_box(painter, QRectF(left, top - height, width, height), columns[place],
                       labels[columns[place]], values[place]);
}

// The box shows as much as its height allows: the value, the name, the extremes.
void drawChartyItem::draw_value_box(picture_painter& painter, const QRectF& box, int column,
                                    const chart_label& label, const series_summary& values) const {
    const value_text shown = latest(column, label, values.last);
    const QRectF area = painter.area(box);
    QPainterPath outline;
    outline.addRoundedRect(area, 8, 8);
    painter.fillPath(outline, colour(box_ground));
    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(QRectF(area.topLeft(), QSizeF(4, area.height())), setMyColor(column));
    painter.restore();

    const double left = box.left() + 14;
    const double width = box.width() - 22;
    const bool is_large = box.height() >= 110;
    if (box.height() >= 32)
        write_in(painter, fitting_font(is_large ? 14 : 11, QFont::Normal, label.name, width, 11), text,
                 {left, box.bottom() - (is_large ? 30 : 17)}, label.name, width);

    const QFont unit_font = picture_font(is_large ? 15 : 12);
    const double beside = is_large ? 0 : text_width(unit_font, shown.unit) + 8;
    const double largest = is_large ? 36 : std::clamp(box.height() - 22, 13.0, 24.0);
    const QFont number_font =
        fitting_font(largest, QFont::Bold, shown.number, std::max(width / 2, width - beside), 12);
    const double bottom = is_large ? box.bottom() - 78 : box.top() + box.height() * 0.06;
    write_in(painter, number_font, bright, {left, bottom}, shown.number, width);
    const double used = is_large ? 0 : text_width(number_font, shown.number) + 8;
    write_in(painter, unit_font, dim, {left + used, is_large ? bottom - 20 : bottom + 1}, shown.unit,
             width - used);

    if (box.height() >= box_with_extremes && !values.empty()) {
        const QFont font = picture_font(13);
        write_in(painter, font, dim, {left, box.top() + 24},
                 QStringLiteral("Max  ") + short_number(values.maximum), width);
        write_in(painter, font, dim, {left, box.top() + 7},
                 QStringLiteral("Min  ") + short_number(values.minimum), width);
    }
}

void drawChartyItem::display_value_4_thumbnail(picture_painter& painter, int column, const chart_label& label,
                                               double value) const {
    const QSizeF size = image.deviceIndependentSize();
    const value_text shown = latest(column, label, value);
    const double width = size.width() - 2 * pad;
    const QFont unit_font = picture_font(12);
    const QFont number_font = fitting_font(20, QFont::Bold, shown.number, width, 12);
    const double bottom = size.height() - foot() - head_of_thumbnail + 3;
    painter.setFont(number_font);
    painter.setPen(setMyColor(column));
    painter.write({pad, bottom}, elided(number_font, shown.number, width));
    const double used = text_width(number_font, shown.number) + 6;
    write_in(painter, unit_font, dim, {pad + used, bottom + 2}, shown.unit, width - used);
}

} // namespace brivant
