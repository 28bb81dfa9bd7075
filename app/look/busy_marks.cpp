#include "app/look/busy_marks.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

constexpr int frame_ms = 40;
constexpr int degrees_a_frame = 15;
constexpr double pen_of_ring = 0.125; // of its size
constexpr int bar_height = 3;
constexpr double bar_a_frame = 0.018;
constexpr double piece = 0.28; // of the bar's width

QColor faint(QColor colour) {
    colour.setAlphaF(0.22f);
    return colour;
}

} // namespace

busy_ring::busy_ring(int size, QWidget* parent) : QWidget(parent) {
    setFixedSize(size, size);
    setAccessibleName(QStringLiteral("Working"));
    turning.setInterval(frame_ms);
    connect(&turning, &QTimer::timeout, this, [this] {
        angle = (angle + degrees_a_frame) % 360;
        update();
    });
}

void busy_ring::set_progress(qint64 its_done, qint64 its_total) {
    part = its_total > 0
               ? std::clamp(static_cast<double>(its_done) / static_cast<double>(its_total), 0.0, 1.0)
               : -1;
    turn_or_stand();
}

void busy_ring::turn_or_stand() {
    if (part >= 0 || !isVisible())
        turning.stop();
    else if (!turning.isActive())
        turning.start();
    update();
}

void busy_ring::paintEvent(QPaintEvent*) {
    constexpr int degree = 16; // of the painter
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor colour = palette().color(foregroundRole());
    const double pen = pen_of_ring * width();
    const QRectF ring = QRectF(rect()).adjusted(pen, pen, -pen, -pen);
    painter.setPen(QPen(faint(colour), pen));
    painter.drawEllipse(ring);
    painter.setPen(QPen(colour, pen, Qt::SolidLine, Qt::RoundCap));
    if (part >= 0)
        painter.drawArc(ring, 90 * degree, -static_cast<int>(part * 360 * degree));
    else
        painter.drawArc(ring, -angle * degree, 100 * degree);
}

busy_bar::busy_bar(QWidget* parent) : QWidget(parent) {
    setFixedHeight(bar_height);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    moving.setInterval(frame_ms);
    connect(&moving, &QTimer::timeout, this, [this] {
        place = std::fmod(place + bar_a_frame, 1.0);
        update();
    });
}

void busy_bar::set_running(bool runs) {
    if (running == runs)
        return;
    running = runs;
    place = 0;
    total = 0;
    move_or_stand();
}

void busy_bar::set_progress(int its_done, int its_total) {
    total = std::max(0, its_total);
    done = std::clamp(its_done, 0, total);
    move_or_stand();
}

void busy_bar::move_or_stand() {
    if (!running || total > 0 || !isVisible())
        moving.stop();
    else if (!moving.isActive())
        moving.start();
    update();
}

void busy_bar::paintEvent(QPaintEvent*) {
    if (!running)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QColor colour = palette().color(foregroundRole());
    const double round = height() / 2.0;
    painter.setBrush(faint(colour));
    painter.drawRoundedRect(rect(), round, round);
    const double from = total > 0 ? 0 : std::max(0.0, place * (1 + piece) - piece) * width();
    const double to = total > 0 ? static_cast<double>(width()) * done / total
                                : std::min(1.0, place * (1 + piece)) * width();
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(from, 0, to - from, height()), round, round);
}

} // namespace brivant
