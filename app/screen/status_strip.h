#pragma once

#include "app/look/busy_marks.h"
#include "app/look/elided_label.h"
#include "app/look/frame_pace.h"
#include "app/look/theme.h"

#include <QFrame>
#include <QToolButton>

namespace brivant {

// What the link mark tells.
struct link_words {
    enum class condition { closed, opening, open };

    condition now = condition::closed;
    QString far_end;  // "Wi-Fi 192.168.0.10"
    QString protocol; // "" while unknown
    QString details;  // the tool tip, a line each
    bool operator==(const link_words&) const = default;
};

// The line at the bottom of the window: what is being done, and how the link stands.
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
    void set_link(const link_words& words);
    const link_words& link() const { return shown; }

Q_SIGNALS:
    // The person wants to see the links.
    void links_wanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    busy_ring ring;
    elided_label status;
    QString said;
    frame_pace status_pace{[this] { status.set_text(said); }};
    QLabel mark;
    QLabel far_end;
    elided_label protocol;
    QWidget* link_box = nullptr;
    QToolButton change;
    link_words shown;
};

} // namespace brivant
