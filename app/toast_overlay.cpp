#include "app/toast_overlay.h"

#include "app/theme.h"

#include <QVBoxLayout>
#include <algorithm>

namespace {
constexpr int shown_ms = 5000;
constexpr int widest = 480;
constexpr int margin = 3 * theme::step;
} // namespace

toast_overlay::toast_overlay(QWidget* over) : overlay(over) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    label.setObjectName(QStringLiteral("toast"));
    label.setTextFormat(Qt::PlainText);
    label.setAlignment(Qt::AlignCenter);
    label.setWordWrap(true);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addWidget(&label);
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

void toast_overlay::place(const QRect& room) {
    label.ensurePolished();
    const int most = std::max(0, std::min(widest, room.width() - 2 * margin));
    label.setWordWrap(false);
    const int wanted = label.sizeHint().width();
    label.setWordWrap(true);
    const int width = std::min(most, wanted);
    const int height = label.heightForWidth(width);
    setGeometry((room.width() - width) / 2, room.height() - height - margin, width, height);
}
