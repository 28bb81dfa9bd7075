#pragma once

#include <QStyledItemDelegate>

namespace brivant {

// Draws cells that may take several lines, in rows high enough for them.
class wrapping_delegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace brivant
