#include "persistence/vehicles.h"

#include "base/string_table.h"
#include "obd/supported_pids.h"

namespace brivant {

namespace {

QString query(const char* format, int id) {
    return fill(QString::fromLatin1(format), {QString::number(id)});
}

std::optional<vehicle> vehicle_of(const QStringList& row) {
    bool ok = false;
    const int id = row.value(0).toInt(&ok);
    if (!ok)
        return {};
    return vehicle{id, row.value(1), row.value(2), row.value(3)};
}

} // namespace

QList<vehicle> all_vehicles(database& db) {
    QList<vehicle> vehicles;
    const QList<QStringList> rows =
        db.retrieve_from_DB(QStringLiteral("SELECT * FROM VEHICLES"), database::listed);
    for (const QStringList& row : rows) {
        if (const auto found = vehicle_of(row))
            vehicles.append(*found);
    }
    return vehicles;
}

std::optional<vehicle> vehicle_with_id(database& db, int veh_id) {
    return vehicle_of(
        db.retrieve_from_DB(query("SELECT * FROM VEHICLES WHERE VEH_ID=%d", veh_id), database::listed)
            .value(0));
}

std::optional<vehicle> vehicle_or_first(database& db, int veh_id) {
    if (auto wanted = vehicle_with_id(db, veh_id))
        return wanted;
    const QList<vehicle> vehicles = all_vehicles(db);
    return vehicles.isEmpty() ? std::nullopt : std::optional(vehicles.first());
}

int store_vehicle_photo(database& db, int veh_id, const QImage& photo) {
    const QList<QStringList> rows =
        db.retrieve_from_DB(query("SELECT VEH_IMAGE_ID, VEH_ID FROM VEH_IMAGES WHERE VEH_ID=%@", veh_id));
    const QString photo_id = rows.isEmpty() ? QStringLiteral("-666") : rows.first().value(0);
    return db.do_update_vehicle_image(QString::number(veh_id), photo, photo_id);
}

QImage photo_of_vehicle(database& db, int veh_id) {
    return db.pull_veh_image(query("VEH_ID=%d", veh_id));
}

obd_groups grab_pids_available(database& db, int veh_id) {
    const QList<QStringList> rows = db.retrieve_from_DB(
        query("SELECT XTRA_INFO FROM VEHICLES where veh_id=%d AND (XTRA_INFO <>'' OR XTRA_INFO "
              "is not null)",
              veh_id));
    return rows.isEmpty() ? obd_groups() : pids_from_json(rows.first().value(0));
}

bool store_pids_available(database& db, int veh_id, const obd_groups& pids) {
    return db.update_tableInDB2({QStringLiteral("XTRA_INFO")}, {arrayToJsonStr(pids)},
                                QStringLiteral("VEHICLES"), QStringLiteral("VEH_ID"),
                                QString::number(veh_id));
}

bool checkIfSameVehicle(database& db, int veh_id, const obd_groups& list, int protocol) {
    const QList<QStringList> rows =
        db.retrieve_from_DB(query("SELECT XTRA_INFO from VEHICLES where veh_id=%d", veh_id));
    const QString stored = rows.isEmpty() ? QString() : rows.first().value(0);
    return stored.isEmpty() || same_pid_sets(pids_from_json(stored), list, protocol);
}

} // namespace brivant
