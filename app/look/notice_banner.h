#pragma once

#include <QFrame>
#include <QLabel>
#include <QList>
#include <QPushButton>
#include <QToolButton>
#include <functional>

namespace brivant {

// Something the person is told on top of the screen, until it is dismissed.
struct notice {
    QString title; // "" for none
    QString text;
    QString button = {}; // "" for none
    std::function<void()> action = {};
    enum class life {
        until_dismissed,
        until_next_operation,   // also on other screens, where it can be mended
        of_operation_on_screen, // until the next operation or another screen
        while_on_screen,
    };
    life stays = life::while_on_screen;
};

// Shows the notices one after the other, the oldest first. Esc does not close it.
class notice_banner : public QWidget {
    Q_OBJECT

public:
    explicit notice_banner(QWidget* parent = nullptr);

    // One that is already waiting is not told twice.
    void add(const notice& what);
    void dismiss();
    // What `ended` made pointless goes: an operation's when the next one starts, a screen's with the screen.
    void drop(notice::life ended);
    qsizetype count() const { return waiting.size(); }
    QString shown_text() const { return waiting.isEmpty() ? QString() : waiting.first().text; }

private:
    void show_first();

    QList<notice> waiting;
    QLabel mark;
    QLabel title;
    QLabel text;
    QLabel more;
    QPushButton action;
    QToolButton close_button;
};

} // namespace brivant
