#include "shell/program_core.h"

#include "base/anonymity.h"
#include "persistence/private_files.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

namespace brivant {

program_core::program_core(const launch_options& what_was_asked)
    : options(what_was_asked), paths(app_paths::for_profile(profile_folder(), &bad_folder)),
      defaults(paths.settings_file), db(paths.documents) {
    make_files_private(paths, db.path());
    if (options.log)
        defaults.override_for_this_run(setting::log_runs, true);
    if (options.metric)
        defaults.override_for_this_run(setting::metric_units, *options.metric);
    if (options.anonymous)
        defaults.override_for_this_run(setting::anonymous, true);
    set_anonymous(defaults.value(setting::anonymous));
    if (options.standard_reading)
        defaults.override_for_this_run(setting::standard_reading, true);
}

program_core::~program_core() = default;

QString program_core::profile_folder() {
    if (options.link != launch_options::link_choice::demo || !options.profile.isEmpty())
        return options.profile;
    demo_folder = std::make_unique<QTemporaryDir>();
    return demo_folder->path();
}

bool program_core::start_demo(QString& problem, int answer_ms) {
    if (options.link != launch_options::link_choice::demo)
        return true;
    std::shared_ptr<virtual_adapter::car> its_car = virtual_adapter::load_car(options.demo_car, problem);
    if (!its_car)
        return false;
    demo = std::make_unique<virtual_adapter_server>();
    demo->set_faults({.delay_ms = answer_ms});
    demo_port = demo->start(std::move(its_car));
    if (demo_port == 0)
        problem = demo->error();
    return demo_port != 0;
}

void program_core::choose_link(adapter_list& adapters) {
    choose_link();
    if (options.link != launch_options::link_choice::as_stored)
        adapters.place_is_given(options.link == launch_options::link_choice::demo);
}

void program_core::choose_link() {
    switch (options.link) {
    case launch_options::link_choice::as_stored: return;
    case launch_options::link_choice::find:
        if (found)
            place.choose(found->where, found->name);
        return;
    case launch_options::link_choice::given:
        if (options.address.kind == interface_bluetooth && options.address.where == place.bt_address())
            place.choose(interface_bluetooth); // its name is known
        else
            place.choose(lasting(options.address), QString());
        return;
    case launch_options::link_choice::demo:
        place.choose_wifi(QStringLiteral("127.0.0.1"), QString::number(demo_port));
        return;
    case launch_options::link_choice::simulate: place.choose(interface_simulated); return;
    }
}

} // namespace brivant
