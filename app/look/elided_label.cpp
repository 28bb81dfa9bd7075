#include "app/look/elided_label.h"

#include "app/look/theme.h"

#include <QEvent>

namespace brivant {

elided_label::elided_label(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

void elided_label::set_text(const QString& text) {
    whole = text.trimmed();
    setAccessibleName(whole);
    fit();
    updateGeometry();
}

void elided_label::fit() {
    const QString line = whole.simplified();
    const QString shown = fontMetrics().elidedText(line, Qt::ElideRight, contentsRect().width());
    if (shown != text())
        setText(shown);
    const bool is_all = shown == line && !whole.contains(QLatin1Char('\n'));
    setToolTip(is_all ? QString() : theme::plain_tool_tip(whole));
}

QSize elided_label::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height()};
}

QSize elided_label::sizeHint() const {
    return {fontMetrics().horizontalAdvance(whole.simplified()) + 2, QLabel::sizeHint().height()};
}

void elided_label::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    fit();
}

void elided_label::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fit();
}

} // namespace brivant
