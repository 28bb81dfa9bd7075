#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

namespace brivant {

// Keeps drawing to at most one time a display frame, however often something new is to be shown.
class frame_pace : public QObject {
    Q_OBJECT

public:
    // `draws`: shows what is new.
    explicit frame_pace(std::function<void()> draws, QObject* parent = nullptr);

    // Draws at once when the last time is a frame ago, otherwise when the frame is over.
    void ask();
    bool is_pending() const { return later.isActive(); }

private:
    void draw();

    std::function<void()> what;
    QElapsedTimer since_last;
    QTimer later;
};

} // namespace brivant
