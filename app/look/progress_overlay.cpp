#include "app/look/progress_overlay.h"

#include "app/look/theme.h"

#include <QPainter>
#include <QVBoxLayout>

namespace brivant {

namespace {

constexpr int card_width = 320;
constexpr float cover = 0.72f;

} // namespace

progress_overlay::progress_overlay(QWidget* over, bool can_be_stopped)
    : overlay(over), stop_button(QStringLiteral("Stop (Esc)")) {
    setFocusPolicy(Qt::NoFocus);
    card.setProperty("role", QStringLiteral("card"));
    card.setFixedWidth(card_width);
    label.setObjectName(QStringLiteral("progress_words"));
    label.setTextFormat(Qt::PlainText);
    label.setAlignment(Qt::AlignCenter);
    label.setWordWrap(true);
    stop_button.setAccessibleName(QStringLiteral("Stop"));
    stop_button.setVisible(can_be_stopped);
    auto* column = new QVBoxLayout(&card);
    column->setContentsMargins(3 * theme::step, 3 * theme::step, 3 * theme::step, 3 * theme::step);
    column->setSpacing(2 * theme::step);
    column->addWidget(&ring, 0, Qt::AlignHCenter);
    column->addWidget(&label);
    column->addWidget(&stop_button, 0, Qt::AlignHCenter);
    auto* room = new QVBoxLayout(this);
    room->addWidget(&card, 0, Qt::AlignCenter);
    connect(&stop_button, &QPushButton::clicked, this, &progress_overlay::stop_wanted);
}

void progress_overlay::show_text(const QString& text) {
    label.setText(text);
    setAccessibleName(text);
    if (isHidden())
        show_on_top();
}

void progress_overlay::show_end(const QString& text) {
    ring.hide();
    stop_button.setText(QStringLiteral("Close (Esc)"));
    stop_button.setAccessibleName(QStringLiteral("Close"));
    show_text(text);
}

void progress_overlay::paintEvent(QPaintEvent*) {
    QColor ground = palette().color(QPalette::Window);
    ground.setAlphaF(cover);
    QPainter(this).fillRect(rect(), ground);
}

} // namespace brivant
