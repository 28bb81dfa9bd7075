#pragma once

#include "app/look/overlay.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <functional>

namespace brivant {

// A question over the whole window, to be answered Yes or No before anything else, or with a third way that
// counts as No. It runs no event loop of
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
        QString third{}; // "" for none
    };
    static answers usual_answers();

    // A question still open is answered No first.
    // `go_third` is called behind the answer No.
    void ask(const QString& title, const QString& text, std::function<void(bool)> answer,
             const answers& words = usual_answers(), std::function<void()> go_third = nullptr);
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
    std::function<void()> third_way;
    QPointer<QWidget> focus_before;
    QLabel title_label;
    QLabel text_label;
    QPushButton yes_button;
    QPushButton third_button;
    QPushButton no_button;
};

} // namespace brivant
