#pragma once

#include "app/look/overlay.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace brivant {

// A card over the whole window, for something to be finished before anything else: a form, a choice. It runs
// no event loop. The keys of the window do not work below it, the Tab key stays within it, and Esc closes it.
// It goes when it is closed, or with the screen that asked for it.
class card_sheet : public overlay {
    Q_OBJECT

public:
    // `asked_by`: a widget of the screen; it is in its window already. `width`: of the card, where there is
    // room.
    card_sheet(QWidget& asked_by, const QString& title, int width);

    // Shows it, with the focus on `first`.
    void open(QWidget& first);
    // Closes it without more; what it says then is Cancel.
    void close_sheet();

Q_SIGNALS:
    void closed();

protected:
    // The derived sheets put their parts below the title, and their buttons at the foot, from the left.
    QVBoxLayout* content() const { return column; }
    QPushButton* add_button(const QString& text, const char* name, bool primary);
    QLabel* add_text(const QString& text, const char* role);
    void fill_room(); // the card takes the height of the window

    void place(const QRect& room) override;
    void paintEvent(QPaintEvent*) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent*) override {} // nothing below it is to be clicked
    void wheelEvent(QWheelEvent*) override {}

private:
    const int wanted_width;
    QFrame* card = nullptr;
    QVBoxLayout* column = nullptr;
    QHBoxLayout* buttons = nullptr;
    QPointer<QWidget> focus_before;
};

} // namespace brivant
