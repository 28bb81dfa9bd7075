#include "app/test_delegate.h"

#include "app/tests_model.h"
#include "diagnostics/limit_bar.h"

#include <QApplication>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr QSize bar_size{120, 40};
constexpr int bar_room = 8; // on each side
constexpr int name_room = 11;
constexpr int line_room = 14;
constexpr int most_bars = 500;
constexpr double corner = 6;

int small_size(const QFont& body) {
    return std::max(11, qRound(QFontInfo(body).pixelSize() * 0.85));
}

} // namespace

test_delegate::test_delegate(const theme& its_look, QObject* parent)
    : QStyledItemDelegate(parent), look(its_look), bars(most_bars) {}

void test_delegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    const int column = index.column();
    if (column != tests_model::test_column && column != tests_model::limits_column)
        return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.text.clear();
    cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    if (column == tests_model::limits_column)
        paint_bar(*painter, option.rect, index);
    else
        paint_name(*painter, cell, index);
}

void test_delegate::paint_name(QPainter& painter, const QStyleOptionViewItem& cell,
                               const QModelIndex& index) const {
    QFont small = cell.font;
    small.setPixelSize(small_size(cell.font));
    const QFontMetrics first(cell.font);
    const QFontMetrics second(small);
    const QRect room = cell.rect.adjusted(name_room, 0, -name_room, 0);
    const int top = room.top() + (room.height() - first.height() - second.height()) / 2;
    const auto line = [&](const QFont& font, const QFontMetrics& metrics, int y, const QColor& colour,
                          const QString& text) {
        painter.setFont(font);
        painter.setPen(colour);
        painter.drawText(QRect(room.left(), y, room.width(), metrics.height()),
                         Qt::AlignLeft | Qt::AlignVCenter,
                         metrics.elidedText(text, Qt::ElideRight, room.width()));
    };
    painter.save();
    line(cell.font, first, top, look.text, index.data().toString());
    line(small, second, top + first.height(), look.muted, index.data(tests_model::subject_role).toString());
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
    const int two_lines = QFontMetrics(option.font).height() + small_size(option.font);
    size.setHeight(std::max(bar_size.height(), two_lines) + line_room);
    return size;
}
