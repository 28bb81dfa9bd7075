#include "app/look/frame_pace.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace brivant {

namespace {

// Milliseconds: a frame of the display, but no more than 30 a second. A car tells a value less often than
// that, and what is not drawn is left for asking.
int frame_length() {
    const QScreen* display = QGuiApplication::primaryScreen();
    const double rate = display ? display->refreshRate() : 0;
    return static_cast<int>(1000 / std::clamp(rate, 20.0, 30.0));
}

} // namespace

frame_pace::frame_pace(std::function<void()> draws, QObject* parent)
    : QObject(parent), what(std::move(draws)) {
    later.setSingleShot(true);
    later.setTimerType(Qt::PreciseTimer);
    connect(&later, &QTimer::timeout, this, &frame_pace::draw);
}

void frame_pace::ask() {
    if (later.isActive())
        return;
    const int frame = frame_length();
    const qint64 gone = since_last.isValid() ? since_last.elapsed() : frame;
    if (gone >= frame)
        draw();
    else
        later.start(static_cast<int>(frame - gone));
}

void frame_pace::draw() {
    since_last.start();
    what();
}

} // namespace brivant
