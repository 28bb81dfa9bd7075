#include "app/look/overlay.h"

#include <QEvent>

namespace brivant {

overlay::overlay(QWidget* over) : QWidget(over) {
    over->installEventFilter(this);
    hide();
}

void overlay::show_on_top() {
    place(parentWidget()->rect());
    show();
    raise();
}

bool overlay::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && watched == parentWidget() && !isHidden())
        place(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

} // namespace brivant
