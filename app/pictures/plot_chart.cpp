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
constexpr double dot_radius = 4;

} // namespace

plot_chart::plot_chart(QWidget* parent) : chart_picture(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

void plot_chart::show_run(const plot_span& all, double its_origin) {
    shown_span = all;
    origin = its_origin;
    read_moment = qQNaN();
    Q_EMIT changed();
}

void plot_chart::set_span(const plot_span& span) {
    if (span == shown_span)
        return;
    shown_span = span;
    Q_EMIT changed();
}

void plot_chart::set_cursor(double ms) {
    if (ms == read_moment || (std::isnan(ms) && std::isnan(read_moment)))
        return;
    read_moment = ms;
    set_stale();
    Q_EMIT changed();
}

void plot_chart::zoom_by(double factor) {
    zoom_about(factor, shows_cursor() ? part_of_cursor() : middle);
}

void plot_chart::zoom_about(double factor, double part) {
    const auto wanted = static_cast<qsizetype>(std::llround(static_cast<double>(shown_span.count) / factor));
    set_span(shown_span.with_count(wanted, part));
}

double plot_chart::part_of_cursor() const {
    return (read_moment - origin - static_cast<double>(shown_span.first)) /
           static_cast<double>(shown_span.count);
}

// Of the width of the plot; outside of it below 0 or above 1.
double plot_chart::part_at(double x) const {
    const QRectF plot = plot_area();
    return plot.width() > 0 ? (x - plot.left()) / plot.width() : 0;
}

// From sweep to sweep, or as many as a pixel has, to where all of its values have come.
void plot_chart::step_cursor(int direction) {
    const double first = origin + static_cast<double>(shown_span.first);
    const auto rows =
        times().rows_before(first + static_cast<double>(shown_span.count)) - times().rows_before(first);
    const auto step = std::max<qsizetype>(1, rows / std::max(1, static_cast<int>(plot_area().width())));
    const double from = shows_cursor() ? read_moment : first + static_cast<double>(shown_span.count) / 2;
    const qsizetype last = std::max<qsizetype>(0, times().rows() - 1);
    const qsizetype to = std::clamp<qsizetype>(times().row_at(from) + direction * step, 0, last);
    set_cursor(times().end_of(to));
    set_span(shown_span.showing(static_cast<qsizetype>(read_moment - origin)));
}

void plot_chart::paintEvent(QPaintEvent* event) {
    chart_picture::paintEvent(event);
    QPainter painter(this);
    const QRectF plot = plot_area();
    if (shows_cursor()) {
        const double x = plot.left() + plot.width() * part_of_cursor();
        painter.setPen(QPen(QColor::fromRgba(cursor_ink), 1));
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    for (const drawChartyItem::dot& dot :
         shows_cursor() ? dots_at(read_moment) : QList<drawChartyItem::dot>()) {
        painter.setPen(QPen(QColor::fromRgba(cursor_ink), 1.5));
        painter.setBrush(dot.colour);
        painter.drawEllipse(dot.place, dot_radius, dot_radius);
    }
    painter.setBrush(Qt::NoBrush);
    if (!hasFocus())
        return;
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
    set_cursor(part < 0 || part >= 1 ? qQNaN()
                                     : origin + static_cast<double>(shown_span.first) +
                                           part * static_cast<double>(shown_span.count));
}

void plot_chart::mouseReleaseEvent(QMouseEvent*) {
    dragging = false;
    unsetCursor();
}

void plot_chart::leaveEvent(QEvent* event) {
    set_cursor(qQNaN());
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
    case Qt::Key_Home: return set_span(shown_span.moved(-shown_span.length));
    case Qt::Key_End: return set_span(shown_span.moved(shown_span.length));
    case Qt::Key_Plus:
    case Qt::Key_Equal: return zoom_by(factor_a_key);
    case Qt::Key_Minus: return zoom_by(1 / factor_a_key);
    case Qt::Key_0: return set_span(shown_span.all());
    default: chart_picture::keyPressEvent(event);
    }
}

} // namespace brivant
