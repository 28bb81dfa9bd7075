#pragma once

#include "base/screen.h"
#include "link/adapter_link.h"
#include "obd/toolkit/mac_toolies.h"

// What an operation works with. Each screen controller has one; all that it refers to outlives it.
struct operation_context {
    process_state& state;
    adapter_link& link;
    mac_toolies& toolies;
    screen& view;

    // The operation is the current one, at its step 0.
    void begin(int operation) {
        state.cur_op = operation;
        state.cur_task = operation;
        state.cur_step = 0;
        state.no_confirm_count = 0;
    }
    // Runs the current task now, or lets the link start it when it is open.
    void start() {
        if (link.openInterfaceConnection())
            link.l_work_current_task(QString());
    }

    // What the view shows beside the status line about the far end of the link.
    QString interfaceLbl;
    QString protocolLbl;
};
