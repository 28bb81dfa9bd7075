#include "app/look/toast_overlay.h"

#include "app/look/theme.h"

#include <QHBoxLayout>
#include <algorithm>

namespace brivant {

namespace {

constexpr int shown_ms = 5000;
constexpr int widest = 480;
constexpr int margin = 3 * theme::step;
constexpr int beside_text = 5 * theme::step / 2;
constexpr int above_text = 3 * theme::step / 2;
constexpr int gap = 3 * theme::step / 2;

} // namespace

toast_overlay::toast_overlay(QWidget* over) : overlay(over) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    card.setObjectName(QStringLiteral("toast_card"));
    label.setObjectName(QStringLiteral("toast"));
    label.setTextFormat(Qt::PlainText);
    label.setAlignment(Qt::AlignCenter);
    label.setWordWrap(true);
    ring.hide();
    auto* row = new QHBoxLayout(&card);
    row->setContentsMargins(beside_text, above_text, beside_text, above_text);
    row->setSpacing(gap);
    row->addWidget(&ring);
    row->addWidget(&label, 1);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(&card);
    end.setSingleShot(true);
    end.setInterval(shown_ms);
    connect(&end, &QTimer::timeout, this, &QWidget::hide);
}

void toast_overlay::show_text(const QString& text) {
    const QString shown = text.trimmed();
    if (shown.isEmpty())
        return hide();
    label.setText(shown);
    label.setAccessibleName(shown);
    show_on_top();
    end.start();
}

void toast_overlay::set_busy(bool busy) {
    ring.setVisible(busy);
    if (!isHidden())
        show_on_top();
}

void toast_overlay::place(const QRect& room) {
    label.ensurePolished();
    const int beside = 2 * beside_text + (ring.isHidden() ? 0 : ring.width() + gap);
    const int most = std::max(0, std::min(widest, room.width() - 2 * margin) - beside);
    label.setWordWrap(false);
    const int wanted = label.sizeHint().width();
    label.setWordWrap(true);
    const int width = std::min(most, wanted);
    const int height = label.heightForWidth(width) + 2 * above_text;
    setGeometry((room.width() - width - beside) / 2, room.height() - height - margin, width + beside, height);
}

} // namespace brivant
