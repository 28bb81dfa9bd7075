#include "app/look/question_sheet.h"

#include "app/look/theme.h"
#include "base/string_table.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace brivant {

namespace {
constexpr int card_width = 480;
} // namespace

question_sheet::question_sheet(QWidget* over) : overlay(over) {
    auto* card = new QFrame;
    card->setProperty("role", QStringLiteral("card"));
    card->setFixedWidth(card_width);
    title_label.setProperty("role", QStringLiteral("heading"));
    for (QLabel* label : {&title_label, &text_label}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    for (QPushButton* button : {&yes_button, &third_button, &no_button}) {
        button->setProperty("large", true);
        button->setMinimumWidth(14 * theme::step);
        button->setAutoDefault(true); // the Return key presses the one that has the focus
    }
    third_button.setObjectName(QStringLiteral("third_answer"));
    no_button.setProperty("role", QStringLiteral("primary"));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->setSpacing(2 * theme::step);
    buttons->addWidget(&yes_button);
    buttons->addWidget(&third_button);
    buttons->addWidget(&no_button);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(4 * theme::step, 4 * theme::step, 4 * theme::step, 3 * theme::step);
    column->setSpacing(2 * theme::step);
    column->addWidget(&title_label);
    column->addWidget(&text_label);
    column->addSpacing(theme::step);
    column->addLayout(buttons);
    auto* room = new QVBoxLayout(this);
    room->addWidget(card, 0, Qt::AlignCenter);

    connect(&yes_button, &QPushButton::clicked, this, [this] { finish(true); });
    connect(&no_button, &QPushButton::clicked, this, [this] { finish(false); });
    connect(&third_button, &QPushButton::clicked, this, [this] {
        const auto go = third_way;
        finish(false);
        go();
    });
}

question_sheet::answers question_sheet::usual_answers() {
    return {localised(QStringLiteral("LBL_YES")), QStringLiteral("No")};
}

void question_sheet::ask(const QString& title, const QString& text, std::function<void(bool)> answer,
                         const answers& words, std::function<void()> go_third) {
    refuse();
    waiting = std::move(answer);
    third_way = std::move(go_third);
    yes_button.setText(words.yes);
    no_button.setText(words.no);
    third_button.setText(words.third);
    third_button.setVisible(!words.third.isEmpty());
    title_label.setText(title.trimmed());
    title_label.setVisible(!title.trimmed().isEmpty());
    text_label.setText(text);
    setAccessibleName(title.trimmed());
    setAccessibleDescription(text);
    focus_before = QApplication::focusWidget();
    show_on_top();
    no_button.setFocus(Qt::PopupFocusReason);
}

void question_sheet::finish(bool yes) {
    const auto answer = std::exchange(waiting, nullptr);
    if (!answer)
        return;
    hide();
    if (focus_before)
        focus_before->setFocus(Qt::PopupFocusReason);
    answer(yes);
}

void question_sheet::place(const QRect& room) {
    setGeometry(room);
}

void question_sheet::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), QColor(0, 0, 0, 120));
}

// The Tab key stays within the sheet.
bool question_sheet::focusNextPrevChild(bool next) {
    QList<QPushButton*> buttons{&yes_button, &third_button, &no_button};
    buttons.removeIf([](const QPushButton* button) { return button->isHidden(); });
    const auto is_focused = [](const QPushButton* button) { return button->hasFocus(); };
    const auto at = std::find_if(buttons.begin(), buttons.end(), is_focused) - buttons.begin();
    buttons[(at + (next ? 1 : buttons.size() - 1)) % buttons.size()]->setFocus(Qt::TabFocusReason);
    return true;
}

} // namespace brivant
