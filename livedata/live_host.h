#pragma once

#include "link/task_controller.h"
#include "livedata/live_results.h"
#include "livedata/run_observer.h"

class run_log;

// The run under way.
struct sampling_run {
    bool keep_logging = false;  // a run is active
    int cur_log_idx = 0;        // the place in the sample set of the PID that is asked for
    QString cur_log_set;        // the line of the sweep under way: its bodies in set order, separated by ","
    bool car_is_silent = false; // the last sweep was answered without a single value
    bool headers_asked = false; // "AT H1" was tried for this run
    bool is_resuming = false;   // the link was lost, and the car has not answered over a new one yet
};

// What the step machines of the live-data screen ask of their controller.
class live_host : public task_controller {
public:
    // When the adapter has not been initialised on this link: starts the initialisation, which comes back to
    // the current operation at step 0, and gives true.
    virtual bool connect_first() = 0;
    virtual live_results& results() = 0;
    virtual sampling_run& run() = 0;
    virtual run_log& log() = 0;
    // Never null.
    virtual run_observer& observer() = 0;

    // The engine among the ECUs with their supported PIDs; the header "48xx10" and no PIDs while none is
    // known.
    virtual obd_group engine_ecu() = 0;
    // Every entry of the set carries the header of its ECU from now on.
    virtual void addEngECU_toPidList() = 0;
    // The set of the run as the car determines it; the rows and the matrix are made anew.
    virtual void take_set(const QStringList& items) = 0;
};
