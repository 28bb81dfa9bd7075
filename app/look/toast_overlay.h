#pragma once

#include "app/look/busy_marks.h"
#include "app/look/overlay.h"

#include <QFrame>
#include <QLabel>
#include <QTimer>

namespace brivant {

// A transient notice at the bottom of the screen, with a turning ring while something runs. It takes neither
// the focus nor the mouse, and goes by itself.
class toast_overlay : public overlay {
    Q_OBJECT

public:
    explicit toast_overlay(QWidget* over);

    // "" hides it.
    void show_text(const QString& text);
    void set_busy(bool busy);
    QString shown_text() const { return isHidden() ? QString() : label.text(); }

protected:
    void place(const QRect& room) override;

private:
    QFrame card;
    busy_ring ring;
    QLabel label;
    QTimer end;
};

} // namespace brivant
