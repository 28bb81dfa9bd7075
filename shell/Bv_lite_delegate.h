#pragma once

#include "base/app_paths.h"
#include "link/wake_watch.h"
#include "shell/adapter_list.h"
#include "shell/main_area.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// The application delegate: reads or seeds the defaults, opens the database, picks the current vehicle, and
// switches between the screens. It owns the link to the adapter. Without a main area (the terminal program)
// it only starts up. All that it is given outlives it.
class Bv_lite_delegate {
public:
    // Reads from the defaults where the adapter is.
    Bv_lite_delegate(adapter_place& its_place, adapter_facts& its_adapter, car_state& its_car,
                     mac_toolies& its_toolies, timers& time_source, screen& its_screen,
                     adapter_link::transport_maker make = make_transport);

    // Opens the database and shows the current vehicle; with a main area also the first screen.
    void applicationDidFinishLaunching(main_area* area);
    void applicationWillTerminate();
    // Leaves the operation, and closes a link that is open or opening.
    void wrap_leave();

    void do_read_codes() { switch_to(screen_kind::diagnostics); }
    void do_actions() { switch_to(screen_kind::live_data); }
    void do_prefs() { switch_to(screen_kind::preferences); }
    void do_expert() { switch_to(screen_kind::expert); }
    void do_logs() { switch_to(screen_kind::logs); }
    void switch_to(screen_kind kind);
    // The screen shown, which is the first one until the window is up.
    screen_kind current_screen() const { return shown; }

    void do_help_button();
    void setSelectedButton(screen_kind kind);
    void setCurCarVals(const QString& vehicle_name, const QImage& curImg);
    void handleQuitEvent();

    // The window became the one that takes keys, or stopped being it.
    void handly();
    void handly2();

    // Shows the vehicle that is current.
    void show_current_vehicle();

    adapter_link link;
    adapter_list adapters;

private:
    void read_defaults();
    void pick_current_vehicle();
    void handly3();

    car_state& car;
    user_defaults& defaults;
    mac_toolies& toolies;
    database& db;
    timers& clock;
    screen& view;
    main_area* area = nullptr;
    screen_kind shown = screen_kind::live_data;
    timer_handle focus_check;
    wake_watch sleep;
};

// Sends the diagnostic log to "console.log" in the Documents folder.
void redirectConsoleLogToDocumentFolder(const app_paths& paths);

} // namespace brivant
