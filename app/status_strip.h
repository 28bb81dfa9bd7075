#pragma once

#include "app/busy_marks.h"
#include "app/elided_label.h"
#include "app/theme.h"

#include <QFrame>

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

    void set_status(const QString& text) { status.set_text(text); }
    const QString& status_text() const { return status.full_text(); }
    void set_busy(bool busy) { ring.setVisible(busy); }
    void set_link(const link_words& words);
    const link_words& link() const { return shown; }

private:
    busy_ring ring;
    elided_label status;
    QLabel mark;
    QLabel far_end;
    elided_label protocol;
    QWidget* link_box = nullptr;
    link_words shown;
};
