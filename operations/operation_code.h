#pragma once

namespace brivant {

// What car_talk::cur_op() tells.
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
    op_put_back = 22,   // the adapter's settings after a run that changed some
    op_link_check = 23, // what the adapter can do
};

} // namespace brivant
