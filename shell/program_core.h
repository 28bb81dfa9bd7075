#pragma once

#include "base/app_paths.h"
#include "base/qt_timers.h"
#include "base/user_defaults.h"
#include "diagnostics/diagnostic_results.h"
#include "expert/expert_session.h"
#include "link/adapter_place.h"
#include "livedata/live_results.h"
#include "persistence/database.h"
#include "position/gpsd_client.h"
#include "shell/adapter_list.h"
#include "shell/launch_options.h"
#include "shell/vehicle_list.h"
#include "toolkit/mac_toolies.h"

#include <QTemporaryDir>
#include <memory>

class virtual_adapter_server;

namespace brivant {

// What stands below both programs for the life of the process: the folders, where the adapter is, what is
// known of it and of the vehicle, the settings, the database, time, and for a demo the car. A demo without a
// profile of its own keeps its files in a folder that goes with it.
class program_core {
public:
    explicit program_core(const launch_options& what_was_asked);
    ~program_core();

    // Starts the demo's car, where one was asked for. False and a sentence in `problem` when that fails.
    // `answer_ms`: how long its adapter takes for each command.
    bool start_demo(QString& problem, int answer_ms = 0);
    // Puts the link that was asked for in the place of the stored one, for this run.
    void choose_link();
    void choose_link(adapter_list& adapters);
    // Why the person's folders cannot be used, "" when they can.
    const QString& folder_problem() const { return bad_folder; }

    const launch_options options;
    // The adapter that --find has found.
    std::optional<probed_adapter> found;

private:
    QString profile_folder();

    std::unique_ptr<QTemporaryDir> demo_folder;
    QString bad_folder;

public:
    const app_paths paths;
    adapter_place place;
    adapter_facts adapter;
    car_state car;
    user_defaults defaults;
    database db;
    qt_timers clock;
    gpsd_client position{defaults, clock};
    mac_toolies toolies{adapter, car, defaults, db};
    vehicle_list vehicles{car, toolies, clock};
    diagnostic_results diagnostics;
    live_results live{[this](const QString& body) { return toolies.shown_number(body); }};
    expert_session expert{defaults};

private:
    std::unique_ptr<virtual_adapter_server> demo;
    int demo_port = 0;
};

} // namespace brivant
