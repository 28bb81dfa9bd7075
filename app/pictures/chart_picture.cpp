#include "app/pictures/chart_picture.h"

#include "charts/picture.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace brivant {

namespace {
constexpr double corner = 8;
constexpr QColor mark_ink(0xf2, 0xc9, 0x4c); // the chart is dark in any window
constexpr QColor reading_ink(0xf4, 0xf7, 0xfa);
constexpr QColor reading_ground(0x10, 0x18, 0x20, 0xd0);
constexpr double dot_radius = 4;
constexpr int widest_word = 140;
constexpr int between_words = 8;
} // namespace

chart_picture::chart_picture(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Chart"));
}

void chart_picture::set_up(const run_pictures& its_pictures) {
    pictures = &its_pictures;
    item.emplace(pictures->toolies);
    item->map_time(true);
}

void chart_picture::mark(const shown_samples& shown) {
    item->use_this_pids(pictures->results.pid_logitems_list);
    item->set_item_2_plot(shown.chart);
    item->updateNoOfPlots(shown.group);
    stale = true;
}

void chart_picture::zoom(qsizetype points, const QString& its_title) {
    if (points == shown_points && its_title == title)
        return;
    item->setNumberPointsToPlot(points);
    shown_points = points;
    title = its_title;
    stale = true;
}

void chart_picture::show_between(double from, double to, const QString& its_title) {
    if (from == shown_from && to == shown_to && its_title == title)
        return;
    item->plot_between(from, to);
    shown_from = from;
    shown_to = to;
    title = its_title;
    stale = true;
}

void chart_picture::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        stale = true;
        update();
    }
}

QRectF chart_picture::plot_area() const {
    const QRectF plot = item->plot_area();
    return {plot.topLeft() * growth, plot.size() * growth};
}

QList<drawChartyItem::dot> chart_picture::dots_at(double ms) const {
    QList<drawChartyItem::dot> dots = item->dots_at(ms, pictures->results.cur_log_points, fitted);
    for (drawChartyItem::dot& dot : dots)
        dot.place *= growth;
    return dots;
}

void chart_picture::begin_at_zero(bool on) {
    from_zero = on;
    stale = true;
}

void chart_picture::draw_new() {
    if (stale && isVisible())
        update();
}

void chart_picture::draw_chart(double ratio) {
    growth = growth_for(font());
    item->initWitdim(QSizeF(size()) / growth, objectName(), ratio * growth);
    item->update_cur_sample(pictures->value_texts);
    fitted = item->fitted(pictures->labels, pictures->results.cur_log_points, from_zero);
    item->draw_grid(fitted, title);
    item->plot_array_list(pictures->results.cur_log_points, fitted);
    setAccessibleDescription(item->in_words(pictures->labels));
}

// A line each, with its word beside its head where there is room.
void chart_picture::draw_marks(QPainter& painter) const {
    painter.setFont(theme::small(font()));
    const QFontMetrics metrics = painter.fontMetrics();
    const QRectF plot = plot_area();
    double words_end = plot.left();
    for (const timed_mark& mark : pictures->results.marks) {
        const auto way = item->x_of(mark.ms, pictures->results.cur_log_points);
        if (!way)
            continue;
        const double x = plot.left() + *way * growth;
        painter.setPen(QPen(mark_ink, 1, Qt::DashLine));
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        const QString word = metrics.elidedText(mark.text, Qt::ElideRight, widest_word);
        const int width = metrics.horizontalAdvance(word);
        const double left = std::min(x + between_words / 2.0, plot.right() - width);
        if (left < words_end)
            continue;
        painter.setPen(mark_ink);
        painter.drawText(QPointF(left, plot.top() + metrics.ascent() + 2), word);
        words_end = left + width + between_words;
    }
}

// At a moment the values then, beside the head of a line; the words stay within the plot.
void chart_picture::draw_reading(QPainter& painter) const {
    const QRectF plot = plot_area();
    const sample_matrix& samples = pictures->results.cur_log_points;
    const auto ms = pointer_x ? item->moment_at((*pointer_x - plot.left()) / growth, samples) : std::nullopt;
    if (!ms)
        return;
    painter.setPen(QPen(reading_ink, 1));
    painter.drawLine(QPointF(*pointer_x, plot.top()), QPointF(*pointer_x, plot.bottom()));
    for (const drawChartyItem::dot& dot : dots_at(*ms)) {
        painter.setBrush(dot.colour);
        painter.drawEllipse(dot.place, dot_radius, dot_radius);
    }
    painter.setFont(theme::small(font()));
    const QFontMetrics metrics = painter.fontMetrics();
    const QString words = metrics.elidedText(item->values_at(*ms, samples, pictures->labels), Qt::ElideRight,
                                             static_cast<int>(plot.width()) - 2 * between_words);
    QRectF box(0, plot.bottom() - metrics.height() - 2 * between_words,
               metrics.horizontalAdvance(words) + 2 * between_words, metrics.height() + between_words);
    box.moveLeft(std::clamp(*pointer_x + between_words, plot.left(), plot.right() - box.width()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(reading_ground);
    painter.drawRoundedRect(box, 4, 4);
    painter.setPen(reading_ink);
    painter.drawText(box, Qt::AlignCenter, words);
}

void chart_picture::mouseMoveEvent(QMouseEvent* event) {
    if (!reads)
        return;
    pointer_x = event->position().x();
    update();
}

void chart_picture::leaveEvent(QEvent* event) {
    pointer_x.reset();
    update();
    QWidget::leaveEvent(event);
}

void chart_picture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double ratio = painter.device()->devicePixelRatioF();
    if (stale || item->imageRepresentation().devicePixelRatio() != ratio * growth)
        draw_chart(ratio);
    stale = false;
    QPainterPath round;
    round.addRoundedRect(rect(), corner, corner);
    painter.setClipPath(round);
    painter.drawImage(QRectF(rect()), item->imageRepresentation());
    draw_marks(painter);
    draw_reading(painter);
}

} // namespace brivant
