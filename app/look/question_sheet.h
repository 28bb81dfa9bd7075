#pragma once

#include "app/look/overlay.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <functional>

namespace brivant {

// A question over the whole window, to be answered Yes or No before anything else. It runs no event loop of
// its own: the answer comes through a callback, exactly once. No is the answer of the Return key at first, of
// Esc, and of whoever takes the question away.
class question_sheet : public overlay {
    Q_OBJECT

public:
    explicit question_sheet(QWidget* over);

    // The words on the two buttons.
    struct answers {
        QString yes;
        QString no;
    };
    static answers usual_answers();

    // A question still open is answered No first.
    void ask(const QString& title, const QString& text, std::function<void(bool)> answer,
             const answers& words = usual_answers());
    bool is_open() const { return waiting != nullptr; }
    // Answers No, when a question is open.
    void refuse() { finish(false); }

protected:
    void place(const QRect& room) override;
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent*) override {} // nothing below it is to be clicked
    void wheelEvent(QWheelEvent*) override {}
    bool focusNextPrevChild(bool next) override;

private:
    void finish(bool yes);

    std::function<void(bool)> waiting;
    QPointer<QWidget> focus_before;
    QLabel title_label;
    QLabel text_label;
    QPushButton yes_button;
    QPushButton no_button;
};

} // namespace brivant
