#include "app/pictures/plot_chart.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr double notch = 120;          // of a wheel
constexpr double factor_a_notch = 1.3; // zoom
constexpr double pan_a_notch = 0.1;    // of the span
constexpr double pan_a_key = 0.1;
constexpr double factor_a_key = 1.5;
constexpr QRgb cursor_ink = 0xfff4f7fa; // the chart is dark in any window
constexpr QRgb focus_ink = 0xff45c2b5;
constexpr double middle = 0.5;

} // namespace

plot_chart::plot_chart(QWidget* parent) : chart_picture(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

void plot_chart::show_rows(qsizetype rows) {
    shown_span = plot_span::all_of(rows);
    cursor_row = -1;
    Q_EMIT changed();
}

void plot_chart::set_span(const plot_span& span) {
    if (span == shown_span)
        return;
    shown_span = span;
    Q_EMIT changed();
}

void plot_chart::set_cursor(qsizetype row) {
    row = row < 0 || shown_span.rows == 0 ? -1 : std::min(row, shown_span.rows - 1);
    if (row == cursor_row)
        return;
    cursor_row = row;
    set_stale();
    Q_EMIT changed();
}

void plot_chart::zoom_by(double factor) {
    const bool about_cursor = shown_span.contains(cursor_row);
    const double part =
        static_cast<double>(cursor_row - shown_span.first) / static_cast<double>(shown_span.count);
    zoom_about(factor, about_cursor ? part : middle);
}

void plot_chart::zoom_about(double factor, double part) {
    const auto wanted = static_cast<qsizetype>(std::llround(static_cast<double>(shown_span.count) / factor));
    set_span(shown_span.with_count(wanted, part));
}

// Of the width of the plot; outside of it below 0 or above 1.
double plot_chart::part_at(double x) const {
    const QRectF plot = plot_area();
    return plot.width() > 0 ? (x - plot.left()) / plot.width() : 0;
}

void plot_chart::step_cursor(int direction) {
    const QRectF plot = plot_area();
    const double rows_per_pixel = plot.width() > 0 ? static_cast<double>(shown_span.count) / plot.width() : 1;
    const auto step = std::max<qsizetype>(1, static_cast<qsizetype>(rows_per_pixel));
    const qsizetype from =
        shown_span.contains(cursor_row) ? cursor_row : shown_span.first + shown_span.count / 2;
    const qsizetype to =
        std::clamp<qsizetype>(from + direction * step, 0, std::max<qsizetype>(0, shown_span.rows - 1));
    set_cursor(to);
    set_span(shown_span.showing(to));
}

void plot_chart::paintEvent(QPaintEvent* event) {
    chart_picture::paintEvent(event);
    QPainter painter(this);
    const QRectF plot = plot_area();
    if (shown_span.contains(cursor_row)) {
        const double x = plot.left() + plot.width() * static_cast<double>(cursor_row - shown_span.first) /
                                           static_cast<double>(shown_span.count);
        painter.setPen(QPen(QColor::fromRgba(cursor_ink), 1));
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    if (!hasFocus())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor::fromRgba(focus_ink), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
}

// --- mouse -------------------------------------------------------------------------------------------------

void plot_chart::wheelEvent(QWheelEvent* event) {
    event->accept();
    const QPoint turned = event->angleDelta();
    const bool sideways = turned.x() != 0 || event->modifiers().testFlag(Qt::ShiftModifier);
    if (!sideways)
        return zoom_about(std::pow(factor_a_notch, turned.y() / notch),
                          std::clamp(part_at(event->position().x()), 0.0, 1.0));
    wheel_rest -= (turned.x() != 0 ? turned.x() : turned.y()) / notch * pan_a_notch *
                  static_cast<double>(shown_span.count);
    const double whole = std::trunc(wheel_rest);
    wheel_rest -= whole;
    set_span(shown_span.moved(static_cast<qsizetype>(whole)));
}

void plot_chart::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    dragging = true;
    drag_from = event->position().x();
    span_before_drag = shown_span;
    if (!shown_span.is_all())
        setCursor(Qt::ClosedHandCursor);
}

void plot_chart::drag_to(double x) {
    const double way = part_at(drag_from) - part_at(x);
    set_span(
        span_before_drag.moved(static_cast<qsizetype>(way * static_cast<double>(span_before_drag.count))));
}

void plot_chart::mouseMoveEvent(QMouseEvent* event) {
    if (dragging)
        drag_to(event->position().x());
    const double part = part_at(event->position().x());
    set_cursor(part < 0 || part >= 1
                   ? -1
                   : shown_span.first + static_cast<qsizetype>(part * static_cast<double>(shown_span.count)));
}

void plot_chart::mouseReleaseEvent(QMouseEvent*) {
    dragging = false;
    unsetCursor();
}

void plot_chart::leaveEvent(QEvent* event) {
    set_cursor(-1);
    chart_picture::leaveEvent(event);
}

// --- keys --------------------------------------------------------------------------------------------------

void plot_chart::keyPressEvent(QKeyEvent* event) {
    const bool with_shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const auto pan =
        std::max<qsizetype>(1, static_cast<qsizetype>(pan_a_key * static_cast<double>(shown_span.count)));
    switch (event->key()) {
    case Qt::Key_Left: return with_shift ? set_span(shown_span.moved(-pan)) : step_cursor(-1);
    case Qt::Key_Right: return with_shift ? set_span(shown_span.moved(pan)) : step_cursor(1);
    case Qt::Key_PageUp: return set_span(shown_span.moved(-shown_span.count));
    case Qt::Key_PageDown: return set_span(shown_span.moved(shown_span.count));
    case Qt::Key_Home: return set_span(shown_span.moved(-shown_span.rows));
    case Qt::Key_End: return set_span(shown_span.moved(shown_span.rows));
    case Qt::Key_Plus:
    case Qt::Key_Equal: return zoom_by(factor_a_key);
    case Qt::Key_Minus: return zoom_by(1 / factor_a_key);
    case Qt::Key_0: return set_span(plot_span::all_of(shown_span.rows));
    default: chart_picture::keyPressEvent(event);
    }
}

} // namespace brivant
