#include "shell/Bv_lite_delegate.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "persistence/recovery.h"
#include "persistence/vehicles.h"

#include <array>

namespace brivant {

namespace {

constexpr int focus_delay_ms = 1100;

struct help_of_screen {
    screen_kind screen;
    const char* hints;
    const char* title;
    const char* icon;
};

// clang-format off
constexpr std::array<help_of_screen, 5> help_panels{{
    {screen_kind::diagnostics, "BV_DIAGS_HINTS",   "BV_DIAGS_TITLE",   "diags.png"},
    {screen_kind::expert,      "BV_EXPERT_HINTS",  "BV_EXPERT_TITLE",  "obd_mode.png"},
    {screen_kind::live_data,   "BV_ACTIONS_HINTS", "BV_ACTIONS_TITLE", "actions.gif"},
    {screen_kind::preferences, "BV_PREFS_HINTS",   "BV_PREFS_TITLE",   "prefs.png"},
    {screen_kind::logs,        "BV_LOGS_HINTS",    "BV_LOGS_TITLE",    "logs.png"},
}};
// clang-format on

} // namespace

Bv_lite_delegate::Bv_lite_delegate(adapter_place& its_place, adapter_facts& its_adapter, car_state& its_car,
                                   mac_toolies& its_toolies, timers& time_source, screen& its_screen,
                                   adapter_link::transport_maker make)
    : link(its_place, its_adapter, time_source, its_screen, std::move(make)),
      adapters(its_toolies.settings(), its_place, link, its_car), car(its_car),
      defaults(its_toolies.settings()), toolies(its_toolies), db(its_toolies.store()), clock(time_source),
      view(its_screen) {
    read_defaults();
    console_log(QStringLiteral("finish kloading"));
}

void Bv_lite_delegate::read_defaults() {
    if (!defaults.has(setting::interface_kind))
        defaults.store_first_values({setting::interface_kind, setting::wifi_ip, setting::wifi_port,
                                     setting::metric_units, setting::log_runs});
    adapters.read_place();
    QObject::connect(&sleep, &wake_watch::woke, &link, &adapter_link::computer_woke);
    car.make_current(-1, {});
}

void Bv_lite_delegate::applicationDidFinishLaunching(main_area* its_area) {
    area = its_area;
    if (!defaults.has(setting::log_runs))
        toolies.setDefaults();
    if (!db.init_DB())
        view.show_message(QString(), db.problem());
    else if (!db.add_own_parts())
        console_log(db.problem()); // all else works without them
    else if (const QString done = put_in_order(db); !done.isEmpty())
        view.show_toast(done);
    pick_current_vehicle();
    if (area)
        area->set_window_title(QStringLiteral("Brivant Lite %1").arg(QStringLiteral(BV_VERSION)));
    if (area)
        do_actions();
}

void Bv_lite_delegate::pick_current_vehicle() {
    const int remembered = defaults.value(setting::current_vehicle);
    const auto current = vehicle_or_first(db, db.is_new() ? -1 : remembered);
    if (!current)
        return;
    car.make_current(current->id, grab_pids_available(db, current->id));
    if (db.is_new()) {
        defaults.set(setting::current_vehicle, current->id);
        toolies.save_pids_2_sample_prefs(setting::sample_set.first_value());
    }
    show_current_vehicle();
}

void Bv_lite_delegate::show_current_vehicle() {
    const auto current = vehicle_with_id(db, car.cur_veh_id());
    if (current)
        setCurCarVals(current->name, photo_of_vehicle(db, current->id));
}

void Bv_lite_delegate::setCurCarVals(const QString& vehicle_name, const QImage& curImg) {
    if (!area)
        return;
    const QImage own(QStringLiteral(":/artwork/car_base.png"));
    area->show_vehicle(vehicle_name, curImg.isNull() ? own : curImg);
}

// --- screens -----------------------------------------------------------------------------------------------

void Bv_lite_delegate::switch_to(screen_kind kind) {
    if (!area)
        return;
    if (shown == screen_kind::preferences)
        area->savePrefs();
    link.set_controller(nullptr); // the operation that runs is left before its controller goes
    area->open_screen(kind);
    shown = kind;
    setSelectedButton(kind);
    link.set_controller(area->current_controller());
}

void Bv_lite_delegate::setSelectedButton(screen_kind kind) {
    area->set_selected_button(kind);
}

void Bv_lite_delegate::do_help_button() {
    if (!area)
        return;
    for (const help_of_screen& help : help_panels) {
        if (help.screen == shown)
            area->pop_helpy(localised(QLatin1String(help.title)), localised(QLatin1String(help.hints)),
                            QLatin1String(help.icon));
    }
}

// --- focus and quitting ------------------------------------------------------------------------------------

void Bv_lite_delegate::handly() {
    console_log(QStringLiteral("got it : NSWindowDidBecomeKeyNotification"));
    focus_check = clock.one_shot(focus_delay_ms, [this] { handly3(); });
}

void Bv_lite_delegate::handly3() {
    console_log(QStringLiteral("key 333 here called from handly"));
    if (area && shown == screen_kind::diagnostics)
        area->regain_focus();
}

void Bv_lite_delegate::handly2() {
    console_log(QStringLiteral("get it: NSWindowDidResignKeyNotification"));
    focus_check.reset();
}

void Bv_lite_delegate::handleQuitEvent() {
    applicationWillTerminate();
}

void Bv_lite_delegate::applicationWillTerminate() {
    wrap_leave();
}

void Bv_lite_delegate::wrap_leave() {
    if (link.is_connected() || link.is_opening()) {
        link.l_leave_cur_op_gracefully(QStringLiteral(""));
        link.disconnect();
    }
}

void redirectConsoleLogToDocumentFolder(const app_paths& paths) {
    const QString file = paths.documents + QStringLiteral("/console.log");
    if (!redirect_console_log(file))
        console_log(
            QStringLiteral("%1 cannot be written: the diagnostic log goes to standard error").arg(file));
}

} // namespace brivant
