#include "app/preferences/prefs_view.h"

#include "persistence/log_files.h"

#include <QPushButton>

namespace {

constexpr int rate_count = 6;

// The link that this run was started with, "" when it is the stored one.
QString link_of_this_run(const launch_options& options) {
    switch (options.link) {
    case launch_options::link_choice::demo: return QStringLiteral("the demo car");
    case launch_options::link_choice::simulate: return QStringLiteral("the stand-in adapter");
    case launch_options::link_choice::bluetooth:
        return QStringLiteral("the Bluetooth adapter %1").arg(options.bluetooth_address);
    case launch_options::link_choice::wifi:
        return QStringLiteral("the Wi-Fi adapter at %1, port %2").arg(options.wifi_host, options.wifi_port);
    default: return {};
    }
}

// The problem takes the place of the help.
void show_problem(QLabel& beside, QLabel& help, const QString& problem) {
    beside.setText(problem);
    beside.setVisible(!problem.isEmpty());
    help.setVisible(problem.isEmpty());
}

} // namespace

prefs_view::prefs_view(const view_context& its_context)
    : screen_view(its_context, QStringLiteral("prefs")),
      toolies(context.core.state, context.core.defaults, context.core.db),
      settings(context.core.defaults, context.core.state, context.delegate, toolies),
      tabs(part<QTabWidget>("tabs")), bluetooth(part<QRadioButton>("bluetooth")),
      wifi(part<QRadioButton>("wifi")), wifi_pane(part<QWidget>("wifi_pane")),
      bluetooth_pane(part<QWidget>("bluetooth_pane")), run_note(part<QLabel>("run_note")),
      address(part<QLineEdit>("address")), address_problem(part<QLabel>("address_problem")),
      port(part<QLineEdit>("port")), port_problem(part<QLabel>("port_problem")),
      metric_units(part<QCheckBox>("metric_units")), log_runs(part<QCheckBox>("log_runs")),
      time_stamps(part<QCheckBox>("time_stamps")), sample_rate(part<QComboBox>("sample_rate")),
      standard_reading(part<QCheckBox>("reading_by_standard")), connection(*this, context, toolies),
      pids(*new pid_chooser(context, &part<QWidget>("pids"))), vehicles(*this, context, toolies) {
    part<QWidget>("pids").layout()->addWidget(&pids);
    run_note.setText(
        QStringLiteral("This run was started with %1, which stays in use until you change the link here.")
            .arg(link_of_this_run(context.core.options)));
    for (int i = 0; i < rate_count; ++i)
        sample_rate.addItem(text_4_sampling(secs_4_sampling(i)), secs_4_sampling(i));
    setPrefsScreen();
    connect_fields();
    connect_tabs();
    begin_at(tabs);
}

void prefs_view::connect_fields() {
    connect(&wifi, &QRadioButton::toggled, this, &prefs_view::savePrefs);
    for (QLineEdit* field : {&address, &port}) {
        connect(field, &QLineEdit::textChanged, this, &prefs_view::show_problems);
        connect(field, &QLineEdit::editingFinished, this, &prefs_view::savePrefs);
    }
    for (QCheckBox* box : {&metric_units, &log_runs, &time_stamps, &standard_reading})
        connect(box, &QCheckBox::toggled, this, &prefs_view::savePrefs);
    connect(&sample_rate, &QComboBox::currentIndexChanged, this, &prefs_view::savePrefs);
    connect(&part<QPushButton>("set_defaults"), &QPushButton::clicked, this, &prefs_view::setDefaultsClicked);
}

void prefs_view::connect_tabs() {
    part<QLabel>("device_name").setTextFormat(Qt::PlainText);
    connect(&part<QPushButton>("device_change"), &QPushButton::clicked, &context.delegate,
            &adapter_link::choose_bluetooth_device);
    connect(&context.delegate, &adapter_link::condition_changed, this, &prefs_view::show_device);
    connect(&part<QPushButton>("test_start"), &QPushButton::clicked, this, &prefs_view::test_connection);
    // The first answer of a vehicle lists what it reports.
    connect(&connection, &prefs_connection_trial::finished, this, [this] {
        pids.show_vehicle();
        vehicles.load_vehicles();
    });
    connect(&vehicles, &prefs_vehicles::about_to_change, this, &prefs_view::stop);
    connect(&vehicles, &prefs_vehicles::current_changed, &pids, &pid_chooser::show_vehicle);
}

void prefs_view::test_connection() {
    tabs.setCurrentIndex(0);
    savePrefs();
    if (wifi.isChecked() && !preferences::address_problem(address.text()).isEmpty())
        return address.setFocus();
    if (wifi.isChecked() && !preferences::port_problem(port.text()).isEmpty())
        return port.setFocus();
    connection.start();
}

void prefs_view::stop() {
    if (connection.is_running())
        connection.stop();
}

void prefs_view::look_changed() {
    connection.look_changed();
    vehicles.look_changed();
    pids.look_changed();
}

void prefs_view::setPrefsScreen() {
    filling = true;
    const general_settings now = settings.stored();
    (now.interface_kind == interface_wifi ? wifi : bluetooth).setChecked(true);
    address.setText(now.wifi_ip);
    port.setText(now.wifi_port);
    metric_units.setChecked(now.metric_units);
    log_runs.setChecked(now.log_runs);
    time_stamps.setChecked(now.time_stamps);
    standard_reading.setChecked(now.standard_reading);
    sample_rate.setCurrentIndex(std::max(0, sample_rate.findData(now.sample_rate)));
    filling = false;
    handle_interface();
    show_problems();
}

general_settings prefs_view::chosen() const {
    general_settings what;
    what.interface_kind = wifi.isChecked() ? interface_wifi : interface_bluetooth;
    what.wifi_ip = address.text();
    what.wifi_port = port.text();
    what.metric_units = metric_units.isChecked();
    what.log_runs = log_runs.isChecked();
    what.time_stamps = time_stamps.isChecked();
    what.sample_rate = sample_rate.currentData().toInt();
    what.standard_reading = standard_reading.isChecked();
    return what;
}

void prefs_view::savePrefs() {
    if (filling)
        return;
    const general_settings now = chosen();
    if (settings.changes_link(now))
        connection.forget(); // it is about another one
    tell_unless(settings.store(now));
    handle_interface();
    context.frame.settings_changed();
}

void prefs_view::setDefaultsClicked() {
    stop();
    const bool written = settings.restore_first_values();
    setPrefsScreen();
    pids.show_vehicle();
    tell_unless(written);
    context.frame.settings_changed();
    if (written)
        context.window.show_toast(QStringLiteral("Every setting has its first value again."));
}

void prefs_view::handle_interface() {
    wifi_pane.setVisible(wifi.isChecked());
    show_device();
    run_note.setVisible(!link_of_this_run(context.core.options).isEmpty() &&
                        context.frame.link_is_as_started());
}

void prefs_view::show_device() {
    const process_state& state = context.core.state;
    bluetooth_pane.setVisible(bluetooth.isChecked() && state.interface_kind == interface_bluetooth);
    const QString named = state.last_BT_Device == state.bt_address
                              ? state.bt_address
                              : QStringLiteral("%1 (%2)").arg(state.last_BT_Device, state.bt_address);
    part<QLabel>("device_name")
        .setText(state.bt_address.isEmpty() ? QStringLiteral("None chosen yet.") : named);
}

void prefs_view::show_problems() {
    show_problem(address_problem, part<QLabel>("address_help"), preferences::address_problem(address.text()));
    show_problem(port_problem, part<QLabel>("port_help"), preferences::port_problem(port.text()));
}

void prefs_view::tell_unless(bool written) {
    if (!written)
        context.frame.tell(
            {QStringLiteral("The preferences cannot be kept"),
             QStringLiteral("The file %1 cannot be written. What you changed holds until the program "
                            "ends; check the rights of the file and the room on the disk.")
                 .arg(context.core.paths.settings_file),
             {},
             nullptr});
}
