#pragma once

#include "app/overlay.h"

#include <QLabel>
#include <QTimer>

// A transient notice at the bottom of the screen. It takes neither the focus nor the mouse, and goes by
// itself.
class toast_overlay : public overlay {
    Q_OBJECT

public:
    explicit toast_overlay(QWidget* over);

    // "" hides it.
    void show_text(const QString& text);
    QString shown_text() const { return isHidden() ? QString() : label.text(); }

protected:
    void place(const QRect& room) override;

private:
    QLabel label;
    QTimer end;
};
