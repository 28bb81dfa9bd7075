#include "app/diagnostics/noted_delegate.h"

#include "app/diagnostics/results_model.h"

#include <QApplication>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace brivant {

namespace {

constexpr int side_room = 11; // of a cell, on either side

int height_of(const QFont& font, int width, const QString& text) {
    const QRect room(0, 0, std::max(1, width - 2 * side_room), 1);
    return QFontMetrics(font).boundingRect(room, Qt::TextWordWrap, text).height();
}

} // namespace

void noted_delegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const QString note = index.data(note_role).toString();
    if (note.isEmpty())
        return wrapping_delegate::paint(painter, option, index);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QString text = std::exchange(cell.text, QString());
    cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    const QFont note_font = theme::small(cell.font);
    const int text_height = height_of(cell.font, cell.rect.width(), text);
    const int note_height = height_of(note_font, cell.rect.width(), note);
    QRect room = cell.rect.adjusted(side_room, 0, -side_room, 0);
    room.setTop(room.top() + (room.height() - text_height - note_height) / 2);
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(look.text);
    painter->drawText(room, Qt::TextWordWrap | Qt::AlignTop, text);
    painter->setFont(note_font);
    painter->setPen(look.muted);
    painter->drawText(room.adjusted(0, text_height, 0, 0), Qt::TextWordWrap | Qt::AlignTop, note);
    painter->restore();
}

QSize noted_delegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = wrapping_delegate::sizeHint(option, index);
    const QString note = index.data(note_role).toString();
    if (!note.isEmpty() && option.rect.width() > 0)
        size.rheight() += height_of(theme::small(option.font), option.rect.width(), note);
    return size;
}

} // namespace brivant
