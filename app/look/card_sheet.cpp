#include "app/look/card_sheet.h"

#include "app/look/theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace brivant {

card_sheet::card_sheet(QWidget& asked_by, const QString& title, int width)
    : overlay(asked_by.window()), wanted_width(width), card(new QFrame), column(new QVBoxLayout(card)),
      buttons(new QHBoxLayout) {
    setWindowFlags(Qt::SubWindow); // the Tab key stays within it
    setFocusPolicy(Qt::ClickFocus);
    setAccessibleName(title);
    card->setProperty("role", QStringLiteral("card"));
    column->setContentsMargins(4 * theme::step, 3 * theme::step, 4 * theme::step, 3 * theme::step);
    column->setSpacing(2 * theme::step);
    add_text(title, "heading");
    buttons->setSpacing(2 * theme::step);
    auto* room = new QVBoxLayout(this);
    room->setContentsMargins(2 * theme::step, 2 * theme::step, 2 * theme::step, 2 * theme::step);
    room->addWidget(card, 0, Qt::AlignCenter);
    connect(&asked_by, &QObject::destroyed, this, &QObject::deleteLater);
}

QLabel* card_sheet::add_text(const QString& text, const char* role) {
    auto* label = new QLabel(text);
    label->setProperty("role", QLatin1String(role));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    column->addWidget(label);
    return label;
}

QPushButton* card_sheet::add_button(const QString& text, const char* name, bool primary) {
    auto* button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setMinimumWidth(14 * theme::step);
    button->setAutoDefault(true);
    if (primary)
        button->setProperty("role", QStringLiteral("primary"));
    buttons->addWidget(button);
    return button;
}

void card_sheet::fill_room() {
    layout()->setAlignment(card, Qt::AlignHCenter);
}

void card_sheet::open(QWidget& first) {
    buttons->insertStretch(0);
    column->addLayout(buttons);
    focus_before = QApplication::focusWidget();
    show_on_top();
    first.setFocus(Qt::PopupFocusReason);
}

void card_sheet::close_sheet() {
    if (isHidden())
        return;
    hide();
    if (focus_before)
        focus_before->setFocus(Qt::PopupFocusReason);
    Q_EMIT closed();
    deleteLater();
}

void card_sheet::place(const QRect& room) {
    card->setFixedWidth(std::min(wanted_width, room.width() - 4 * theme::step));
    setGeometry(room);
}

void card_sheet::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), QColor(0, 0, 0, 120));
}

bool card_sheet::event(QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride)
        return overlay::event(event);
    event->accept(); // the keys of the window rest
    return true;
}

void card_sheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close_sheet();
    event->accept();
}

} // namespace brivant
