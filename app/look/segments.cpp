#include "app/look/segments.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace brivant {

segments::segments(QWidget* parent) : QFrame(parent), choices(this) {
    setProperty("role", QStringLiteral("segments"));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2, 2, 2, 2);
    row->setSpacing(2);
    connect(&choices, &QButtonGroup::idClicked, this, &segments::chosen);
}

void segments::add(const QString& text, const QString& tool_tip) {
    auto* button = new QPushButton(text);
    button->setProperty("role", QStringLiteral("segment"));
    button->setCheckable(true);
    button->setToolTip(tool_tip);
    const int index = static_cast<int>(choices.buttons().size());
    button->setObjectName(QStringLiteral("%1_%2").arg(objectName()).arg(index));
    choices.addButton(button, index);
    layout()->addWidget(button);
}

} // namespace brivant
