#include "charts/drawChartyItem.h"

#include "base/console_log.h"
#include "base/shared_types.h"
#include "charts/axis_values.h"
#include "charts/outward_rounding.h"
#include "charts/picture.h"
#include "charts/time_axis.h"
#include "charts/time_plot.h"
#include "toolkit/mac_toolies.h"

#include <algorithm>
#include <cmath>
#include <exception>

namespace brivant {

namespace {

constexpr double narrowed = 0.25; // of a PID's range, off either end, while there is nothing to go by
constexpr double line_width = 1.8;
constexpr double thumbnail_line_width = 2.2;
constexpr double latest_point_radius = 3.5;
constexpr qsizetype fewest_points = 2;

QString unit_of(const chart_label& label) {
    return label.unit == not_available ? QString() : label.unit.trimmed();
}

QString as_f(double value) {
    return QString::number(value, 'f', 6);
}

QRect in_device_pixels(const QRectF& place, double ratio) {
    const QPoint corner(qRound(place.left() * ratio), qRound(place.top() * ratio));
    return {corner,
            QSize(qRound(place.right() * ratio) - corner.x(), qRound(place.bottom() * ratio) - corner.y())};
}

// The places where the series are broken.
QList<int> draw_breaks(QPainter& painter, const sample_matrix& matrix, const QRect& place,
                       const plot_range& range, double gap_width) {
    if (!range.is_by_time()) {
        const QList<int> gaps = gap_places(matrix, place, range);
        draw_gaps(painter, gaps, place, gap_width);
        return gaps;
    }
    const QList<plot_gap> gaps = time_gaps(matrix, place, range);
    draw_time_gaps(painter, gaps, place, gap_width);
    return ends_of(gaps);
}

} // namespace

void drawChartyItem::initWitdim(QSizeF dimensions, const QString& its_imageID, double device_pixel_ratio) {
    image_id = its_imageID;
    image = blank_picture(dimensions, device_pixel_ratio);
}

void drawChartyItem::initWithImage(const QImage& its_image, const QString& its_imageID) {
    initWitdim(its_image.deviceIndependentSize(), its_imageID, its_image.devicePixelRatio());
}

void drawChartyItem::setNumberPointsToPlot(qsizetype count) {
    SHOW_THESE_MANY_LAST_POINTS = count == -1 ? -1 : std::max(count, fewest_points);
}

void drawChartyItem::plot_between(double from, double to) {
    plotted_from = from;
    plotted_to = to;
}

plot_range drawChartyItem::shown_range(const sample_matrix& matrix) const {
    if (maps_time && plotted_to > plotted_from)
        return range_between(matrix, plotted_from, plotted_to);
    const qsizetype rows = plotted_end < 0 ? matrix.rows() : std::min(plotted_end, matrix.rows());
    const qsizetype wanted = SHOW_THESE_MANY_LAST_POINTS;
    const qsizetype first = wanted != -1 && rows >= wanted ? rows - wanted : 0;
    if (!maps_time)
        return {first, rows};
    plot_range range = range_between(matrix, matrix.times().begin_of(first), matrix.times().end_of(rows - 1));
    range.rows = rows;
    return range;
}

bool drawChartyItem::isPlottingThisIndex(int index) const {
    return cur_ITEMS_2_PLOT.size() < 2 ? index == cur_item_2_PLOT : cur_ITEMS_2_PLOT.contains(index);
}

QList<int> drawChartyItem::plotted(const chart_labels& labels) const {
    QList<int> columns{cur_item_2_PLOT};
    if (is_group())
        columns = QList<int>(cur_ITEMS_2_PLOT.cbegin(), cur_ITEMS_2_PLOT.cend());
    columns.removeIf([&labels](int column) { return column < 0 || column >= labels.size(); });
    return columns;
}

QColor drawChartyItem::setMyColor(int index) {
    return series_colour(index);
}

chart_labels drawChartyItem::work_out_labels(const sample_matrix& matrix) const {
    const bool by_standard = toolies.standard_reading();
    chart_labels labels;
    for (int column = 0; column < _pid_logitems_list.size(); ++column) {
        const QString pid = pid_of(_pid_logitems_list[column]);
        const double most = toolies.get_PID_min_max(pid, true);
        const double least = toolies.get_PID_min_max(pid, false);
        double maximum = most - (most - least) * narrowed;
        double minimum = least + (most - least) * narrowed;
        if (matrix.rows() >= 2) {
            // The wrong way round, so that the first value sets both.
            maximum = least;
            minimum = most;
            if (const series_summary seen = matrix.extremes(column); !seen.empty()) {
                // The ends of the program's own range are none of another reading.
                maximum = by_standard ? seen.maximum : std::max(maximum, seen.maximum);
                minimum = by_standard ? seen.minimum : std::min(minimum, seen.minimum);
            }
        }
        labels.append(
            {toolies.get_pid_name_with_pid(pid), toolies.shown_units(pid), as_f(maximum), as_f(minimum)});
    }
    return labels;
}

chart_labels drawChartyItem::fitted(chart_labels labels, const sample_matrix& matrix, bool from_zero) const {
    const plot_range range = shown_range(matrix);
    for (const int column : plotted(labels)) {
        const series_summary seen = matrix.summary(column, range.first, range.rows);
        if (seen.empty())
            continue;
        labels[column].minimum = as_f(from_zero ? std::min(0.0, seen.minimum) : seen.minimum);
        labels[column].maximum = as_f(from_zero ? std::max(0.0, seen.maximum) : seen.maximum);
    }
    return labels;
}

drawChartyItem::value_range drawChartyItem::rounded_range(const chart_label& label) {
    return {round_outward(label.minimum.toDouble(), false), round_outward(label.maximum.toDouble(), true)};
}

void drawChartyItem::plot_array_list(const sample_matrix& matrix, const chart_labels& these_labels) try {
    plot_range range = shown_range(matrix);
    const double ratio = image.devicePixelRatio();
    const QRect place = in_device_pixels(drawSizes, ratio);

    picture_painter painter(image, foot());
    if (maps_time && !is_thumbnail)
        draw_time_lines(painter, range, matrix.times().are_known());
    painter.save();
    painter.translate(painter.at(0, 0));
    painter.scale(1 / ratio, -1 / ratio);
    const QRectF visible = QRectF(place).adjusted(-ratio, -2 * ratio, ratio, 2 * ratio);
    const QList<int> columns = plotted(these_labels);
    QList<series_summary> values;
    bool has_points = false;
    const QList<int> gaps = draw_breaks(painter, matrix, place, range, ratio);
    for (const int column : columns) {
        const value_range ends = rounded_range(these_labels[column]);
        values.append(matrix.extremes_with_first(column));
        values.last().last = matrix.summary(column, range.first, range.rows).last;
        if (ends.is_inverted())
            continue; // no value yet
        range.minimum = ends.minimum;
        range.maximum = ends.maximum;
        const QPolygon points = series_points(matrix, column, place, range);
        has_points = has_points || !points.isEmpty();
        const int foot_of_line = scale_point(range.first, range.minimum, place.x(), place.y(), place.width(),
                                             place.height(), static_cast<double>(range.rows),
                                             static_cast<double>(range.first), range.maximum, range.minimum)
                                     .y();
        std::optional<int> baseline;
        if (columns.size() == 1)
            baseline = foot_of_line;
        painter.setClipRect(visible);
        for (const QPolygon& part : parts_between(points, gaps))
            draw_series(painter, part, baseline, setMyColor(column),
                        ratio * (is_thumbnail ? thumbnail_line_width : line_width));
        if (!is_thumbnail && !points.isEmpty()) {
            const double radius = ratio * latest_point_radius;
            painter.setClipRect(visible.adjusted(-radius, -radius, radius, radius));
            painter.setPen(Qt::NoPen);
            painter.setBrush(setMyColor(column));
            painter.drawEllipse(QPointF(points.constLast()), radius, radius);
        }
    }
    painter.restore();

    if (!columns.isEmpty() && !std::isnan(values.constFirst().last))
        last_OBD_val = values.constFirst().last;
    if (is_thumbnail) {
        if (!columns.isEmpty())
            display_value_4_thumbnail(painter, columns.constFirst(), these_labels[columns.constFirst()],
                                      values.constFirst().last);
        return;
    }
    if (!maps_time || !has_points)
        print_sweep_numbers(painter, matrix.dropped() + range.first + 1, matrix.dropped() + range.rows,
                            has_points);
    display_value(painter, these_labels, columns, values);
} catch (const std::exception& problem) {
    console_log(QStringLiteral("plot_array_list::[%1]").arg(QString::fromLocal8Bit(problem.what())));
}

QList<drawChartyItem::dot> drawChartyItem::dots_at(double ms, const sample_matrix& matrix,
                                                   const chart_labels& labels) const {
    QList<dot> dots;
    const plot_range range = shown_range(matrix);
    const QRectF plot = plot_area();
    for (const int column : plotted(labels)) {
        const value_range ends = rounded_range(labels[column]);
        const double value = value_at(matrix, column, ms);
        if (std::isnan(value) || !(ends.maximum > ends.minimum))
            continue;
        dots.append({{plot.left() + plot.width() * (ms - range.from) / (range.to - range.from),
                      plot.bottom() - plot.height() * (value - ends.minimum) / (ends.maximum - ends.minimum)},
                     setMyColor(column)});
    }
    return dots;
}

std::optional<double> drawChartyItem::x_of(double ms, const sample_matrix& matrix) const {
    const plot_range range = shown_range(matrix);
    if (!range.is_by_time() || ms < range.from || ms > range.to)
        return std::nullopt;
    return plot_area().width() * (ms - range.from) / (range.to - range.from);
}

std::optional<double> drawChartyItem::moment_at(double x, const sample_matrix& matrix) const {
    const plot_range range = shown_range(matrix);
    const double width = plot_area().width();
    if (!range.is_by_time() || !matrix.times().are_known() || x < 0 || x > width || width <= 0)
        return std::nullopt;
    return range.from + (range.to - range.from) * x / width;
}

QString drawChartyItem::values_at(double ms, const sample_matrix& matrix, const chart_labels& labels) const {
    QStringList texts;
    for (const int column : plotted(labels)) {
        const double value = value_at(matrix, column, ms);
        const QString number = std::isnan(value) ? QStringLiteral("\u2013") : short_number(value);
        texts += (number + u' ' + unit_of(labels[column])).trimmed();
    }
    return clock_text(ms, 1) + QStringLiteral("   ") + texts.join(QStringLiteral(", "));
}

value_text drawChartyItem::latest(int index, const chart_label& label, double value) const {
    return shown_value(cur_sample_set.value(index), value, unit_of(label));
}

QString drawChartyItem::in_words(const chart_labels& labels) const {
    QStringList words;
    for (const int column : plotted(labels)) {
        const value_text value = latest(column, labels[column], last_OBD_val);
        words.append(
            QStringLiteral("%1: %2 %3").arg(labels[column].name, value.number, value.unit).trimmed());
    }
    return words.join(QStringLiteral(", "));
}

} // namespace brivant
