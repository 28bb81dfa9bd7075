#include "app/look/wrapping_delegate.h"

#include "app/look/theme.h"

#include <algorithm>

namespace brivant {

QSize wrapping_delegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    // The padding at the sides of a cell, which the style sheet gives and Qt leaves out where it breaks
    // lines.
    constexpr int padding = theme::step;
    if (cell.rect.width() > 0)
        cell.rect.setWidth(std::max(1, cell.rect.width() - 2 * padding));
    QSize size = QStyledItemDelegate::sizeHint(cell, index);
    size.rheight() += theme::step;
    return size;
}

} // namespace brivant
