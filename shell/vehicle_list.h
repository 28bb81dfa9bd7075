#pragma once

#include "base/timers.h"
#include "persistence/deletions.h"
#include "persistence/vehicles.h"
#include "toolkit/mac_toolies.h"

#include <functional>

namespace brivant {

// What the vehicle dialog edits.
struct vehicle_values {
    QString name;
    QString model_year;
    QString engine_volume;
};

// The vehicles as the person keeps them: added, edited, deleted, and one of them current. What goes wrong
// comes back as a sentence. All that it is given outlives it.
class vehicle_list {
public:
    vehicle_list(car_state& its_car, mac_toolies& its_toolies, timers& time_source);

    // Another vehicle has become current.
    std::function<void()> current_changed;
    // A deletion has gone on or ended.
    std::function<void()> deletion_changed;
    // What a deletion could not do, told when it ends later than deleteCar().
    std::function<void(const QString&)> deletion_failed;

    QList<vehicle> load_vehicles();
    int count_of_logs(int veh_id) const;
    bool is_current(int veh_id) const { return veh_id == car.cur_veh_id(); }

    struct saved {
        int id = -1;     // of the vehicle; -1 when it was not stored
        QString problem; // "" when it was
    };
    // Stores a new vehicle (`veh_id` -1), or changes one. A null photo leaves the present one.
    saved saveCurCarVals(int veh_id, const vehicle_values& values, const QImage& photo);

    // Deletes the vehicle with its photo, its logs and its sample set; with many logs it goes on in slices,
    // whatever screen is shown. The only one is refused. When the current one
    // goes, the first of the others becomes current. "" when it is gone or going.
    QString deleteCar(int veh_id);
    // Null while none is being deleted.
    const vehicle_deletion* deletion() const { return going.get(); }
    bool is_going(int veh_id) const { return going && going->veh_id() == veh_id; }
    // Does the rest of a deletion at once, for a program without an event loop. "" when it is gone.
    QString finish_deletion();

    // Results, logs and sample sets are from now on those of this vehicle. "" when it is current and will be
    // at the next start.
    QString setCurrentCar(int veh_id);

    // What is wrong with a typed text, as a sentence; "" when it is good. An unknown year or displacement may
    // be left out.
    static QString name_problem(const QString& name);
    static QString year_problem(const QString& year);
    static QString volume_problem(const QString& volume);

private:
    QString make_current(int veh_id);
    QString hand_over(int veh_id);
    void delete_slice();
    QString end_deletion();

    car_state& car;
    user_defaults& defaults;
    database& db;
    timers& clock;
    std::unique_ptr<vehicle_deletion> going;
    timer_handle next_slice;
};

} // namespace brivant
