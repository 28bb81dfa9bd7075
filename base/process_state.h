#pragma once

#include "base/rx_buffer.h"
#include "base/shared_types.h"

// Operation codes held in cur_op; cur_task uses the same codes, with 0 for the adapter initialisation.
enum operation : int {
    op_initialise = 0,
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

enum interface_code : int { interface_bluetooth = 5, interface_wifi = 6, interface_simulated = 7 };

// The process-wide values. Made once in main and handed on by reference; each test makes its own.
// Touched on the main thread only.
struct process_state {
    // The command in flight
    rx_buffer rx_accum;          // bytes received since the last complete reply
    rx_buffer rx_reply;          // the complete reply just cut from rx_accum
    int cmd_timeout_secs = 3;    // seconds allowed for the command in flight
    int timeout_retry_count = 0; // time-outs of the current command so far
    int no_confirm_count = 0;    // consecutive replies that failed the reply check
    int warn_no_reply = 1;       // 1: the retries-exhausted box may be shown, -1: it was, or is suppressed
    obd_messages obd_msgs;       // the messages of the last reply, by ECU

    // The operation
    int cur_op = op_read_codes;
    int cur_step = -1;
    int cur_task = -1;
    int pid_loop_active = -1; // 16 while the supported-PID loop takes every reply
    int pid_loop_phase = -1;  // 0 send the first request, 1 a reply is awaited, -1 finished

    // The link and what stands at its far end
    int interface_kind = interface_bluetooth;
    QString wifi_ip = QStringLiteral("192.168.0.10");
    QString wifi_port = QStringLiteral("35000");
    QString bt_address;           // of the Bluetooth device, "" when none was chosen yet
    QString last_BT_Device;       // its name
    bool tcpConnectReady = false; // the first task was started: replies reach the controller
    bool adapter_ready = false;   // initialised on this link
    bool adapter_known = false;   // answered to a reset on this link: a reset is not needed again
    bool headers_shown = false;   // "AT H1" is in force
    int cur_protocol = -1;        // number from "AT DPN", -1 while unknown
    QString protocol_description;
    QString interface_description;

    // The car
    int cur_veh_id = -1;
    obd_groups available_pids; // supported PIDs of each ECU
    QStringList sample_pids;   // the PIDs of a sampling run, "0C|7E8"
    int boost_reference_kpa = 101;

    // Settings that are asked for often
    bool metric_units = false;
    bool log_runs = false;
};
