#pragma once

#include "app/look/busy_marks.h"
#include "app/look/overlay.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>

namespace brivant {

// A translucent cover with a ring and a text over a part of a window whose contents are on their way, with
// Stop where the work can be stopped. What lies below it cannot be clicked; it does not take the focus.
class progress_overlay : public overlay {
    Q_OBJECT

public:
    progress_overlay(QWidget* over, bool can_be_stopped);

    void show_text(const QString& text);
    // The work has ended without anything to see: why, and Close in the place of Stop.
    void show_end(const QString& text);
    // A total of 0 when it is not known.
    void set_progress(qint64 done, qint64 total) { ring.set_progress(done, total); }
    QString shown_text() const { return isHidden() ? QString() : label.text(); }

Q_SIGNALS:
    void stop_wanted();

protected:
    void place(const QRect& room) override { setGeometry(room); }
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent*) override {}
    void wheelEvent(QWheelEvent*) override {}

private:
    static constexpr int ring_size = 56;

    QFrame card;
    busy_ring ring{ring_size, nullptr};
    QLabel label;
    QPushButton stop_button;
};

} // namespace brivant
