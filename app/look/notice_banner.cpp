#include "app/look/notice_banner.h"

#include "app/look/theme.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <algorithm>

namespace brivant {

namespace {
constexpr int mark_size = 24;
constexpr qsizetype most_waiting = 20;
} // namespace

notice_banner::notice_banner(QWidget* parent) : QWidget(parent), mark(QStringLiteral("!")) {
    mark.setObjectName(QStringLiteral("notice_mark"));
    mark.setFixedSize(mark_size, mark_size);
    mark.setAlignment(Qt::AlignCenter);
    mark.setAccessibleName(QStringLiteral("Notice"));
    title.setProperty("role", QStringLiteral("strong"));
    more.setProperty("role", QStringLiteral("small"));
    for (QLabel* label : {&title, &text}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    close_button.setText(QStringLiteral("\u2715"));
    close_button.setToolTip(QStringLiteral("Dismiss"));
    close_button.setAccessibleName(QStringLiteral("Dismiss the notice"));

    auto* words = new QVBoxLayout;
    words->setSpacing(theme::step / 2);
    words->addWidget(&title);
    words->addWidget(&text);
    auto* card = new QFrame;
    card->setObjectName(QStringLiteral("notice_card"));
    auto* room = new QVBoxLayout(this);
    room->setContentsMargins(2 * theme::step, 2 * theme::step, 2 * theme::step, 0);
    room->addWidget(card);
    auto* row = new QHBoxLayout(card);
    row->setContentsMargins(2 * theme::step, 3 * theme::step / 2, theme::step, 3 * theme::step / 2);
    row->setSpacing(2 * theme::step);
    row->addWidget(&mark, 0, Qt::AlignTop);
    row->addLayout(words, 1);
    row->addWidget(&action, 0, Qt::AlignVCenter);
    row->addWidget(&more, 0, Qt::AlignVCenter);
    row->addWidget(&close_button, 0, Qt::AlignTop);

    connect(&close_button, &QToolButton::clicked, this, &notice_banner::dismiss);
    connect(&action, &QPushButton::clicked, this, [this] {
        const auto act = waiting.isEmpty() ? nullptr : waiting.first().action;
        dismiss();
        if (act)
            act();
    });
    hide();
}

void notice_banner::add(const notice& what) {
    const bool known = std::any_of(waiting.begin(), waiting.end(), [&what](const notice& other) {
        return other.title == what.title && other.text == what.text;
    });
    if (known || waiting.size() >= most_waiting)
        return;
    waiting += what;
    show_first();
}

void notice_banner::dismiss() {
    if (!waiting.isEmpty())
        waiting.removeFirst();
    show_first();
}

void notice_banner::drop(notice::life ended) {
    waiting.removeIf([ended](const notice& what) { return what.stays == ended; });
    show_first();
}

void notice_banner::show_first() {
    setVisible(!waiting.isEmpty());
    if (waiting.isEmpty())
        return;
    const notice& first = waiting.first();
    title.setText(first.title.trimmed());
    title.setVisible(!first.title.trimmed().isEmpty());
    text.setText(first.text.trimmed());
    action.setText(first.button);
    action.setVisible(!first.button.isEmpty());
    more.setText(QStringLiteral("1 of %1").arg(waiting.size()));
    more.setVisible(waiting.size() > 1);
    setAccessibleName(QStringLiteral("Notice: %1").arg(first.text));
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace brivant
