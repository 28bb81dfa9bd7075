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

    // What the view shows beside the status line about the far end of the link.
    QString interfaceLbl;
    QString protocolLbl;
};
