#include "app/diagnostics/test_delegate.h"

#include "app/diagnostics/tests_model.h"
#include "app/look/painting.h"
#include "charts/limit_bar.h"

#include <QApplication>
#include <algorithm>
#include <cmath>
#include <utility>

namespace brivant {

namespace {

constexpr int bar_width = 120;
constexpr int bar_height = 16;
constexpr int bar_room = 40; // on each side, for the numbers of the limits
constexpr int marker_width = 4;
constexpr int marker_excess = 3; // above and below the bar
constexpr double shade = 0.25;   // of the allowed range, inside its border
constexpr int name_room = 11;
constexpr int line_room = 14;
constexpr int mark_room = 6;

// Where the row's value stands, in points of the bar: see limit_bar_position().
struct bar_places {
    double from = 0; // the allowed range
    double to = bar_width;
    double value = 0;
    bool is_inside = true;
    QString low, high; // what the limits say, "" where there is none
};

bar_places places_of(const QString& triple) {
    constexpr double scale_begin = 10; // and it ends at 110
    constexpr double scale = 100;
    constexpr double least = marker_width / 2.0;
    const QStringList said = triple.split(u'~');
    const bool only_most = said.value(2) == QLatin1String("max");
    const bool only_least = said.value(2) == QLatin1String("min");
    const QString low = said.value(0);
    const QString high = only_most || only_least ? low : said.value(2);
    const auto at = [&](double value) {
        const double place = limit_bar_position(value, low.toDouble(), high.toDouble());
        return std::isnan(place) ? 0 : (place - scale_begin) / scale * bar_width;
    };
    bar_places places;
    const double value = said.value(1).toDouble();
    if (!only_most) {
        places.from = at(low.toDouble());
        places.low = low;
    }
    if (!only_least) {
        places.to = at(high.toDouble());
        places.high = high;
    }
    places.value = std::clamp(at(value), least, bar_width - least);
    places.is_inside = (only_most || value >= low.toDouble()) && (only_least || value <= high.toDouble());
    return places;
}

} // namespace

test_delegate::test_delegate(const theme& its_look, QObject* parent)
    : QStyledItemDelegate(parent), look(its_look) {}

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
    case tests_model::limits_column: return paint_bar(*painter, cell, index);
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

// The allowed range shaded, the limits as numbers below its ends, and a mark at the value, which stands
// beyond a limit where the value does.
void test_delegate::paint_bar(QPainter& painter, const QStyleOptionViewItem& cell,
                              const QModelIndex& index) const {
    const bar_places places = places_of(index.data(tests_model::limits_role).toString());
    const QFont small = theme::small(cell.font);
    const int numbers = QFontMetrics(small).height();
    const int top = cell.rect.center().y() - (bar_height + marker_excess + numbers) / 2;
    const QRectF bar(cell.rect.left() + bar_room, top, bar_width, bar_height);
    const QRectF range = QRectF(bar.left() + places.from, top, places.to - places.from, bar_height);
    QColor shaded = look.green;
    shaded.setAlphaF(shade);
    painter.save();
    painter.setPen(look.field_edge);
    painter.setBrush(look.ground);
    painter.drawRect(bar);
    painter.setPen(look.green);
    painter.setBrush(shaded);
    painter.drawRect(range);
    painter.fillRect(QRectF(bar.left() + places.value - marker_width / 2.0, top - marker_excess, marker_width,
                            bar_height + 2 * marker_excess),
                     places.is_inside ? look.green : look.red);
    painter.setFont(small);
    painter.setPen(look.muted);
    const double below = bar.bottom() + marker_excess;
    const bool is_one_point = range.width() < 1;
    const auto number = [&](double x, const QString& text) {
        painter.drawText(QRectF(x - bar_room, below, 2 * bar_room, numbers), Qt::AlignHCenter, text);
    };
    if (!places.low.isEmpty())
        number(range.left(), places.low);
    if (!places.high.isEmpty() && !(is_one_point && places.low == places.high))
        number(range.right(), places.high);
    painter.restore();
}

QSize test_delegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    if (index.column() == tests_model::limits_column)
        size.setWidth(bar_width + 2 * bar_room);
    const int small_lines = index.siblingAtColumn(0).data(note_role).toString().isEmpty() ? 1 : 2;
    const int lines =
        QFontMetrics(option.font).height() + small_lines * (theme::small(option.font).pixelSize() + 2);
    size.setHeight(
        std::max(bar_height + 2 * marker_excess + QFontMetrics(theme::small(option.font)).height(), lines) +
        line_room);
    return size;
}

} // namespace brivant
