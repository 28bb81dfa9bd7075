#pragma once

#include "app/look/elided_label.h"

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

// The link at the top of the window: where it leads and how it stands. A click opens the list of links.
class link_mark : public QToolButton {
    Q_OBJECT

public:
    explicit link_mark(QWidget* parent = nullptr);

    void set_link(const link_words& words);
    const link_words& link() const { return shown; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

private:
    void show_words();

    QLabel mark;
    elided_label far_end;
    elided_label state;
    link_words shown;
};

} // namespace brivant
