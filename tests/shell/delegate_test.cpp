#include "base/console_log.h"
#include "diagnostics/readCodes.h"
#include "persistence/vehicles.h"
#include "shell/Bv_lite_delegate.h"
#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace brivant {

// Start-up and the five screens, with a window that writes down what is asked of it.

namespace {

class recording_area : public main_area {
public:
    QStringList calls;
    task_controller* controller = nullptr;
    std::function<void()> on_open; // when the screen before goes

    QString seen() { return std::exchange(calls, {}).join(", "); }

    void open_screen(screen_kind kind) override {
        calls += "open " + QString::number(int(kind));
        if (on_open)
            on_open();
    }
    task_controller* current_controller() override { return controller; }
    void savePrefs() override { calls += "save"; }
    void set_selected_button(screen_kind kind) override { calls += "button " + QString::number(int(kind)); }
    void set_window_title(const QString& title) override { calls += "title " + title; }
    void show_vehicle(const QString& name, const QImage&) override { calls += "vehicle " + name; }
    void pop_helpy(const QString& title, const QString&, const QString& icon) override {
        calls += "help " + title + " " + icon;
    }
    void regain_focus() override { calls += "focus"; }
};

// One start of the program on a profile that may have been used before.
struct program {
    adapter_place place;
    adapter_facts adapter;
    car_state car;
    hand_timers clock;
    recording_screen view;
    recording_area area;
    QStringList written;
    user_defaults defaults;
    database db;
    mac_toolies toolies{adapter, car, defaults, db};
    std::unique_ptr<Bv_lite_delegate> delegate;

    explicit program(const temporary_profile& profile)
        : defaults(profile.paths.settings_file), db(profile.paths.documents) {}
    void start() {
        delegate = std::make_unique<Bv_lite_delegate>(
            place, adapter, car, toolies, clock, view,
            [this](const adapter_place&) { return std::make_unique<scripted_transport>(written, true); });
        delegate->applicationDidFinishLaunching(&area);
    }
};

class start_up : public testing::Test {
protected:
    temporary_profile profile;
    program again{profile};

    start_up() { silence_console_log(); }
};

} // namespace

TEST_F(start_up, the_first_time) {
    again.start();
    EXPECT_EQ(again.area.seen(), "vehicle Cur Veh., title Brivant Lite " BV_VERSION ", open 1, button 1");
    EXPECT_EQ(again.place.interface_kind(), interface_bluetooth);
    EXPECT_FALSE(again.defaults.value(setting::metric_units));
    EXPECT_EQ(again.defaults.value(setting::sample_set.of_vehicle(again.car.cur_veh_id())),
              QStringList({"0D", "11", "0C", "05"}));
    EXPECT_EQ(again.defaults.value(setting::current_vehicle), again.car.cur_veh_id());
    EXPECT_EQ(again.defaults.value(setting::interface_kind), 5);
    EXPECT_EQ(again.defaults.value(setting::wifi_ip), "192.168.0.10");
    EXPECT_EQ(again.defaults.value(setting::wifi_port), "35000");
    EXPECT_TRUE(
        again.defaults.has(setting::log_runs)); // off, and the toolkit's first values are not written over it
    EXPECT_FALSE(again.defaults.value(setting::log_runs));
    EXPECT_FALSE(again.defaults.has(setting::sample_rate));
    EXPECT_TRUE(again.view.events.isEmpty());
}

TEST_F(start_up, the_stored_link) {
    struct {
        const char* why;
        QVariant kind;
        QString address;
        int expected_kind;
        QString expected_address;
    } const rows[] = {
        {"Bluetooth does not look at the address", 5, "10.0.0.1", 5, "192.168.0.10"},
        {"Wi-Fi", 6, "10.0.0.1", 6, "10.0.0.1"},
        {"anything else is Wi-Fi", 7, "10.0.0.1", 6, "10.0.0.1"},
        {"at most sixty-four characters", -1, QString(80, 'x'), 6, QString(64, 'x')},
        {"no number: as the first time", "six", "10.0.0.1", 5, "192.168.0.10"},
    };
    for (const auto& row : rows) {
        program next(profile);
        next.defaults.store(setting::interface_kind, row.kind);
        next.defaults.set(setting::wifi_ip, row.address);
        next.defaults.set(setting::wifi_port, "123456789012");
        next.defaults.set(setting::metric_units, true);
        next.start();
        EXPECT_EQ(next.place.interface_kind(), row.expected_kind) << row.why;
        EXPECT_EQ(next.place.wifi_ip(), row.expected_address) << row.why;
        EXPECT_EQ(next.place.wifi_port(), row.expected_kind == 6 ? "1234567890" : "35000") << row.why;
    }
}

TEST_F(start_up, the_bluetooth_device_used_last) {
    again.defaults.set(setting::bluetooth_address, "00:1d:a5:68:98:8d"); // and no name
    again.start();
    EXPECT_EQ(again.place.last_BT_Device(), "00:1D:A5:68:98:8D");
    const std::pair<const char*, const char*> rows[] = {
        {"00:1d:a5:68:98:8b", "00:1D:A5:68:98:8B OBDII"}, {"00:1D:A5:68:98", " "}, {"words", " "}};
    for (const auto& [stored, expected] : rows) {
        program next(profile);
        next.defaults.set(setting::bluetooth_address, stored);
        next.defaults.set(setting::bluetooth_name, "OBDII");
        next.start();
        EXPECT_EQ(next.place.bt_address() + " " + next.place.last_BT_Device(), expected) << stored;
    }
    again.place.take_device("00:1D:A5:68:98:8C", "Another");
    Q_EMIT again.delegate->link.device_taken();
    program next(profile);
    next.start();
    EXPECT_EQ(next.place.bt_address() + " " + next.place.last_BT_Device(), "00:1D:A5:68:98:8C Another");
}

TEST_F(start_up, settings_without_log_runs_get_the_whole_table) {
    again.defaults.set(setting::interface_kind, 6);
    again.start();
    EXPECT_EQ(again.defaults.value(setting::interface_kind), 5);
    EXPECT_TRUE(again.defaults.value(setting::log_runs));
    EXPECT_EQ(again.defaults.value(setting::sample_rate), -1);
}

TEST_F(start_up, the_current_vehicle) {
    profile.db.init_DB();
    const int first = vehicle_or_first(profile.db, -1)->id;
    const int second = profile.db.add_update_DB({"Second", "2001", "2.0"}, "VEHICLES");
    store_pids_available(profile.db, second, ecus_of("7E8 01 0C"));
    const std::tuple<const char*, QVariant, int> rows[] = {
        {"remembered", second, second},
        {"deleted since", 999, first},
        {"no number", "x", first},
        {"first", first, first},
    };
    for (const auto& [why, remembered, expected] : rows) {
        program next(profile);
        next.defaults.store(setting::current_vehicle, remembered);
        next.defaults.set(setting::sample_set.of_vehicle(second), QStringList{"0C|7E8"});
        next.start();
        EXPECT_EQ(next.car.cur_veh_id(), expected) << why;
        EXPECT_EQ(text_of(next.car.available_pids()), expected == second ? "7E8 01 0C" : "") << why;
        EXPECT_TRUE(next.area.seen().startsWith(expected == second ? "vehicle Second" : "vehicle Cur Veh."))
            << why;
    }
}

TEST_F(start_up, without_a_usable_database_it_says_so_and_runs) {
    QDir().mkpath(profile.db.path()); // a folder in its place
    again.car.make_current(7, ecus_of("7E8 01"));
    again.start();
    EXPECT_TRUE(again.view.last("message").contains("BV_loggies_lite.db"));
    EXPECT_EQ(again.car.cur_veh_id(), -1);
    EXPECT_TRUE(again.car.available_pids().isEmpty());
    EXPECT_TRUE(again.area.seen().endsWith("open 1, button 1"));
}

TEST_F(start_up, screens) {
    again.start();
    Bv_lite_delegate& delegate = *again.delegate;
    again.area.seen();
    const std::tuple<void (Bv_lite_delegate::*)(), const char*, const char*> rows[] = {
        {&Bv_lite_delegate::do_read_codes, "open 0, button 0", "help Diagnostics diags.png"},
        {&Bv_lite_delegate::do_actions, "open 1, button 1", "help Live data actions.gif"},
        {&Bv_lite_delegate::do_prefs, "open 2, button 2", "help Preferences prefs.png"},
        {&Bv_lite_delegate::do_expert, "save, open 3, button 3", "help Expert console obd_mode.png"},
        {&Bv_lite_delegate::do_logs, "open 4, button 4", "help Logs logs.png"},
    };
    for (const auto& [go, calls, help] : rows) {
        (delegate.*go)();
        EXPECT_EQ(again.area.seen(), calls);
        delegate.do_help_button();
        EXPECT_EQ(again.area.seen(), help);
    }
    EXPECT_EQ(delegate.current_screen(), screen_kind::logs);
}

TEST_F(start_up, the_operation_that_runs_is_left_when_the_screen_changes) {
    again.defaults.set(setting::interface_kind, 6);
    again.defaults.set(setting::log_runs, false);
    again.start();
    diagnostic_results results;
    readCodes diagnostics(again.car, again.delegate->link, again.toolies, again.view, results, profile.paths);
    again.area.controller = &diagnostics;
    again.delegate->do_read_codes();
    diagnostics.l_readCodes();
    again.clock.advance(800);
    EXPECT_EQ(again.written.join(' '), "AT Z");
    again.area.controller = nullptr;
    again.area.on_open = [&] { EXPECT_FALSE(diagnostics.is_running()); }; // left before its controller goes
    again.delegate->do_logs();
    EXPECT_FALSE(diagnostics.is_running() || again.view.is_busy);
    EXPECT_TRUE(again.delegate->link.is_connected()); // the link stays
    again.clock.advance(60000);
    EXPECT_EQ(again.written.size(), 1);
    EXPECT_EQ(again.delegate->link.mainViewController(), nullptr);
    again.delegate->applicationWillTerminate();
    EXPECT_FALSE(again.delegate->link.is_connected());
}

TEST_F(start_up, focus_comes_back_after_a_moment) {
    again.start();
    again.delegate->do_read_codes();
    again.area.seen();
    again.delegate->handly();
    again.clock.advance(1099);
    EXPECT_EQ(again.area.seen(), "");
    again.clock.advance(1);
    EXPECT_EQ(again.area.seen(), "focus");
    again.delegate->handly();
    again.delegate->handly2(); // lost again before it counted
    again.clock.advance(2000);
    EXPECT_EQ(again.area.seen(), "");
    again.delegate->do_logs();
    again.area.seen();
    again.delegate->handly();
    again.clock.advance(2000);
    EXPECT_EQ(again.area.seen(), ""); // another screen is not asked
}

} // namespace brivant
