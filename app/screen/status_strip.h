#pragma once

#include "app/look/busy_marks.h"
#include "app/look/elided_label.h"
#include "app/look/frame_pace.h"
#include "app/look/theme.h"

#include <QFrame>

namespace brivant {

// The line at the bottom of the window: what is being done, and over which protocol.
class status_strip : public QFrame {
    Q_OBJECT

public:
    explicit status_strip(QWidget* parent = nullptr);

    // A run brings one with every reply: no more than one a display frame is shown.
    void set_status(const QString& text) {
        said = text.trimmed();
        status_pace.ask();
    }
    const QString& status_text() const { return said; }
    void set_busy(bool busy) { ring.setVisible(busy); }
    // How the car is spoken to; "" while that is not known.
    void set_protocol(const QString& words) {
        protocol.set_text(words);
        protocol.setVisible(!words.isEmpty());
    }

private:
    busy_ring ring;
    elided_label status;
    QString said;
    frame_pace status_pace{[this] { status.set_text(said); }};
    elided_label protocol;
};

} // namespace brivant
