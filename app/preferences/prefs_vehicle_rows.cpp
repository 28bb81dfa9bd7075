#include "app/preferences/prefs_vehicle_rows.h"

#include "app/look/painting.h"

#include <QApplication>
#include <QPaintDevice>

namespace brivant {

namespace {

constexpr int most_photos = 200; // kept decoded
constexpr QSize photo_size{84, 56};
constexpr int margin = theme::step;
constexpr int chip_room = 10;
const QString current_word = QStringLiteral("Current");

// Gives the width that it takes.
int draw_chip(QPainter& painter, const QFont& font, const theme& look, const QRect& cell) {
    const QFontMetrics metrics(font);
    const QSize size(metrics.horizontalAdvance(current_word) + 2 * chip_room, metrics.height() + margin / 2);
    const QRect place(cell.right() - margin - size.width(), cell.center().y() - size.height() / 2,
                      size.width(), size.height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.accent);
    painter.drawRoundedRect(place, size.height() / 2.0, size.height() / 2.0);
    painter.setFont(font);
    painter.setPen(look.on_accent);
    painter.drawText(place, Qt::AlignCenter, current_word);
    return size.width() + margin;
}

} // namespace

vehicle_rows::vehicle_rows(vehicle_list& its_list, database& its_db, QObject* parent)
    : QAbstractListModel(parent), list(its_list), db(its_db), photos(most_photos) {}

void vehicle_rows::reload() {
    beginResetModel();
    vehicles = list.load_vehicles();
    photos.clear();
    endResetModel();
}

const vehicle* vehicle_rows::at(const QModelIndex& index) const {
    return index.isValid() && index.row() < vehicles.size() ? &vehicles.at(index.row()) : nullptr;
}

QImage vehicle_rows::photo_of(int veh_id) const {
    if (!photos.contains(veh_id)) {
        QImage photo = photo_of_vehicle(db, veh_id);
        if (photo.isNull())
            photo = QImage(QStringLiteral(":/artwork/car_base2@2x.png"));
        photos.insert(veh_id, new QImage(photo));
    }
    return *photos.object(veh_id);
}

QString vehicle_rows::facts_of(const vehicle& one) {
    QStringList facts{one.model_year.trimmed(), one.engine_volume.trimmed()};
    facts.removeAll(QString());
    return facts.join(QStringLiteral(" \u00b7 "));
}

int vehicle_rows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(vehicles.size());
}

QVariant vehicle_rows::data(const QModelIndex& index, int role) const {
    const vehicle* one = at(index);
    if (!one)
        return {};
    const bool is_current = list.is_current(one->id);
    switch (role) {
    case Qt::DisplayRole: return one->name;
    case Qt::AccessibleTextRole:
        return is_current ? QStringLiteral("%1, current vehicle").arg(one->name) : one->name;
    case Qt::ToolTipRole: return theme::plain_tool_tip(one->name);
    case facts_role: return facts_of(*one);
    case is_current_role: return is_current;
    case photo_role: return photo_of(one->id);
    default: return {};
    }
}

vehicle_delegate::vehicle_delegate(const theme& its_look, QObject* parent)
    : QStyledItemDelegate(parent), look(its_look) {}

void vehicle_delegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.text.clear();
    cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QRect room = cell.rect.adjusted(margin, margin, -margin, -margin);
    const QPoint corner(room.left(), room.center().y() - photo_size.height() / 2);
    painter->drawPixmap(corner, rounded_picture(index.data(vehicle_rows::photo_role).value<QImage>(),
                                                photo_size, painter->device()->devicePixelRatioF()));
    room.setLeft(room.left() + photo_size.width() + 2 * margin);

    const QFont small = theme::small(cell.font);
    QFont strong = cell.font;
    strong.setWeight(QFont::DemiBold);
    if (index.data(vehicle_rows::is_current_role).toBool())
        room.setRight(room.right() - draw_chip(*painter, small, look, room));
    const QString facts = index.data(vehicle_rows::facts_role).toString();
    const int first = QFontMetrics(strong).height();
    const int second = facts.isEmpty() ? 0 : QFontMetrics(small).height() + margin / 2;
    const int top = room.top() + (room.height() - first - second) / 2;
    draw_line(*painter, strong, look.text, {room.left(), top, room.width(), first}, index.data().toString());
    draw_line(*painter, small, look.muted, {room.left(), top + first, room.width(), second}, facts);
    painter->restore();
}

} // namespace brivant
