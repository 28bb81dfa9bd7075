#pragma once

#include "app/look/theme.h"
#include "shell/vehicle_list.h"

#include <QAbstractListModel>
#include <QCache>
#include <QStyledItemDelegate>

namespace brivant {

// The vehicles in the order of the database, each with its photo. The list and the database outlive it.
class vehicle_rows : public QAbstractListModel {
    Q_OBJECT

public:
    enum row_role { facts_role = Qt::UserRole, is_current_role, photo_role };

    vehicle_rows(vehicle_list& its_list, database& its_db, QObject* parent = nullptr);

    // Reads them anew.
    void reload();
    // Null outside the rows.
    const vehicle* at(const QModelIndex& index) const;
    // The stored photo, or the picture of a vehicle without one.
    QImage photo_of(int veh_id) const;
    // "2012 - 3.0 lts.", what of it is known.
    static QString facts_of(const vehicle& one);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    vehicle_list& list;
    database& db;
    QList<vehicle> vehicles;
    mutable QCache<int, QImage> photos;
};

// Paints a row of them: photo, name, facts, and a mark at the current one.
class vehicle_delegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit vehicle_delegate(const theme& its_look, QObject* parent = nullptr);

    static constexpr int row_height = 72;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    const theme& look;
};

} // namespace brivant
