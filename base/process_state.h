#pragma once

#include "base/settings_table.h"
#include "base/shared_types.h"

// Operation codes: car_talk::cur_op().
enum operation : int {
    op_read_codes = 1,
    op_clear_codes = 2,
    op_expert = 3,
    op_log_run = 4,
    op_pending_freeze = 5,
    op_vehicle_info = 6,
    op_fuel = 7,
    op_mode6 = 8,
    op_misfire = 11,
    op_extras = 12,
    op_boost = 13,
    op_o2_layout = 14,
    op_o2_tests = 15,
    op_link_info = 20, // initialise the adapter and stop there
    op_permanent = 21,
};

// The process-wide values. Made once in main and handed on by reference; each test makes its own.
// Touched on the main thread only.
struct process_state {

    // The link and what stands at its far end
    bool adapter_ready = false; // initialised on this link
    bool adapter_known = false; // answered to a reset on this link: a reset is not needed again
    bool headers_shown = false; // "AT H1" is in force
    int cur_protocol = -1;      // number from "AT DPN", -1 while unknown
    QString protocol_description;
    QString interface_description;

    // The car
    int cur_veh_id = -1;
    obd_groups available_pids; // supported PIDs of each ECU
    QStringList sample_pids;   // the PIDs of a sampling run, "0C|7E8"
    int boost_reference_kpa = 101;
};
