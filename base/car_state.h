#pragma once

#include "base/shared_types.h"

namespace brivant {

// The current vehicle, and what it is known to support.
class car_state {
public:
    // -1 while there is none.
    int cur_veh_id() const { return veh_id; }
    // The supported PIDs of each ECU.
    const obd_groups& available_pids() const { return pids; }
    // How often the car itself has told them: what else is known of it is from earlier runs of the program.
    int times_told() const { return told; }

    // This vehicle is the current one; `stored`: the PIDs in its record.
    void make_current(int its_veh_id, const obd_groups& stored) {
        veh_id = its_veh_id;
        pids = stored;
    }
    void pids_told(const obd_groups& by_the_car) {
        pids = by_the_car;
        ++told;
    }

private:
    int veh_id = -1;
    obd_groups pids;
    int told = 0;
};

} // namespace brivant
