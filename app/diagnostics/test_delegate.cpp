#include "app/diagnostics/test_delegate.h"

#include "app/diagnostics/tests_model.h"
#include "app/look/painting.h"
#include "charts/limit_bar.h"

#include <QApplication>
#include <QPaintDevice>
#include <QPainterPath>
#include <utility>

namespace brivant {

namespace {

constexpr QSize bar_size{120, 40};
constexpr int bar_room = 8; // on each side
constexpr int name_room = 11;
constexpr int line_room = 14;
constexpr int mark_room = 6;
constexpr int most_bars = 500;
constexpr double corner = 6;

} // namespace

test_delegate::test_delegate(const theme& its_look, QObject* parent)
    : QStyledItemDelegate(parent), look(its_look), bars(most_bars) {}

void test_delegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    if (index.column() == tests_model::value_column)
        return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QIcon mark = std::exchange(cell.icon, QIcon());
    cell.text.clear();
    cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    switch (index.column()) {
    case tests_model::limits_column: return paint_bar(*painter, option.rect, index);
    case tests_model::verdict_column: return paint_verdict(*painter, cell, mark, index);
    default: return paint_name(*painter, cell, index);
    }
}

// The style would draw the words of a selected row in the colour of all its texts.
void test_delegate::paint_verdict(QPainter& painter, const QStyleOptionViewItem& cell, const QIcon& mark,
                                  const QModelIndex& index) const {
    const QRect room = cell.rect.adjusted(name_room, 0, 0, 0);
    const QSize size = cell.decorationSize;
    mark.paint(&painter, QRect(QPoint(room.left(), room.center().y() - size.height() / 2), size));
    painter.save();
    painter.setFont(cell.font);
    painter.setPen(index.data(Qt::ForegroundRole).value<QColor>());
    painter.drawText(room.adjusted(size.width() + mark_room, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     index.data().toString());
    painter.restore();
}

void test_delegate::paint_name(QPainter& painter, const QStyleOptionViewItem& cell,
                               const QModelIndex& index) const {
    const QFont small = theme::small(cell.font);
    const int first = QFontMetrics(cell.font).height();
    const int second = QFontMetrics(small).height();
    const QString note = index.data(note_role).toString();
    const int small_lines = note.isEmpty() ? 1 : 2;
    const QRect room = cell.rect.adjusted(name_room, 0, -name_room, 0);
    const int top = room.top() + (room.height() - first - small_lines * second) / 2;
    const QRect line(room.left(), top + first, room.width(), second);
    painter.save();
    draw_line(painter, cell.font, look.text, {room.left(), top, room.width(), first},
              index.data().toString());
    draw_line(painter, small, look.muted, line, index.data(tests_model::subject_role).toString());
    draw_line(painter, small, look.text, line.translated(0, second), note);
    painter.restore();
}

void test_delegate::paint_bar(QPainter& painter, const QRect& cell, const QModelIndex& index) const {
    const QString limits = index.data(tests_model::limits_role).toString();
    const double ratio = painter.device()->devicePixelRatioF();
    const QString key = limits + QLatin1Char('@') + QString::number(ratio) + (look.dark ? u'd' : u'l');
    if (!bars.contains(key)) {
        limit_bar_look bar;
        QImage range;
        if (look.dark) {
            bar.ground = look.ground;
            bar.ink = look.text;
        } else {
            range = QImage(QStringLiteral(":/artwork/mode6_range@2x.png"));
        }
        bar.pixel_ratio = ratio;
        bars.insert(key, new QImage(draw_the_mode6_cues(limits, bar_size, bar, range)));
    }
    const QRect place(QPoint(cell.left() + bar_room, cell.center().y() - bar_size.height() / 2), bar_size);
    QPainterPath round;
    round.addRoundedRect(place, corner, corner);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(round);
    painter.drawImage(place.topLeft(), *bars.object(key));
    painter.restore();
}

QSize test_delegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (index.column() == tests_model::limits_column)
        size.setWidth(bar_size.width() + 2 * bar_room);
    const int small_lines = index.siblingAtColumn(0).data(note_role).toString().isEmpty() ? 1 : 2;
    const int lines =
        QFontMetrics(option.font).height() + small_lines * (theme::small(option.font).pixelSize() + 2);
    size.setHeight(std::max(bar_size.height(), lines) + line_room);
    return size;
}

} // namespace brivant
