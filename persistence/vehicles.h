#pragma once

#include "base/shared_types.h"
#include "persistence/database.h"
#include <optional>

namespace brivant {

// What the database knows of the vehicles. Nothing here asks the person or changes the current vehicle.

struct vehicle {
    int id = -1;
    QString name;
    QString model_year;
    QString engine_volume;
};

// All vehicles in the order of their rows; empty on failure (database::problem()).
QList<vehicle> all_vehicles(database& db);
std::optional<vehicle> vehicle_with_id(database& db, int veh_id);
// The vehicle that was current last time, or the first one when it is gone; none when there is none.
std::optional<vehicle> vehicle_or_first(database& db, int veh_id);

// Stores the photo in place of the vehicle's present one, if any. The id of its row, 0 or less on failure.
int store_vehicle_photo(database& db, int veh_id, const QImage& photo);
QImage photo_of_vehicle(database& db, int veh_id);

// The supported PIDs of each ECU that were stored for the vehicle; empty when there are none.
obd_groups grab_pids_available(database& db, int veh_id);
bool store_pids_available(database& db, int veh_id, const obd_groups& pids);
// False when other ECUs or PIDs are stored for the vehicle than those in `list`; true while none are stored.
// The protocol tells how headers are compared (see same_ecu); -1: letter by letter.
bool checkIfSameVehicle(database& db, int veh_id, const obd_groups& list, int protocol = -1);

} // namespace brivant
