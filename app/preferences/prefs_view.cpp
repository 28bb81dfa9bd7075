#include "app/preferences/prefs_view.h"

#include "persistence/log_files.h"
#include "shell/known_adapter.h"

namespace brivant {

namespace {

// The link that this run was started with, "" when it is the stored one.
QString link_of_this_run(const launch_options& options) {
    switch (options.link) {
    case launch_options::link_choice::demo: return QStringLiteral("the demo car");
    case launch_options::link_choice::simulate: return QStringLiteral("the stand-in adapter");
    case launch_options::link_choice::given:
        return options.address.kind == interface_wifi
                   ? QStringLiteral("the Wi-Fi adapter at %1, port %2")
                         .arg(options.address.where, QString::number(options.address.number))
                   : QStringLiteral("the %1 adapter %2")
                         .arg(word_of_link(options.address.kind), options.address.where);
    default: return {};
    }
}

// An address that was pasted may bring blanks along.
QString typed_in(const QLineEdit* field) {
    return field->text().trimmed();
}

// The problem takes the place of the help.
void show_problem(QLabel& beside, QLabel& help, const QString& problem) {
    beside.setText(problem);
    beside.setVisible(!problem.isEmpty());
    help.setVisible(problem.isEmpty());
}

} // namespace

prefs_view::prefs_view(const view_context& its_context)
    : screen_view(its_context), ui(laid_out_in<Ui::prefs>(*this)),
      settings(context.core.defaults, context.core.place, context.link, context.core.toolies),
      connection(ui, context, context.core.toolies), pids(*new pid_chooser(context, ui.pids)),
      vehicles(*this, ui, context) {
    ui.pids_column->addWidget(&pids);
    ui.run_note->setText(
        QStringLiteral("This run was started with %1, which stays in use until you change the link here.")
            .arg(link_of_this_run(context.core.options)));
    for (int i = 0; i < static_cast<int>(setting::sample_rates.size()); ++i)
        ui.sample_rate->addItem(text_4_sampling(secs_4_sampling(i)), secs_4_sampling(i));
    setPrefsScreen();
    connect_fields();
    connect_tabs();
    begin_at(*ui.tabs);
}

void prefs_view::connect_fields() {
    connect(ui.wifi, &QRadioButton::toggled, this, &prefs_view::savePrefs);
    connect(ui.other_link, &QRadioButton::toggled, this, &prefs_view::choose_other_link);
    connect(ui.open_links, &QPushButton::clicked, this, [this] { context.frame.open_links(); });
    connect(&context.delegate.adapters, &adapter_list::changed, this, [this] {
        if (settings.changes_link(chosen()))
            setPrefsScreen(); // another one was chosen there
    });
    for (QLineEdit* field : {ui.address, ui.port}) {
        connect(field, &QLineEdit::textChanged, this, &prefs_view::show_problems);
        connect(field, &QLineEdit::editingFinished, this, &prefs_view::savePrefs);
    }
    for (QCheckBox* box : {ui.metric_units, ui.log_runs, ui.time_stamps, ui.reading_by_standard, ui.anonymous,
                           ui.store_position})
        connect(box, &QCheckBox::toggled, this, &prefs_view::savePrefs);
    for (QComboBox* choice : {ui.sample_rate, ui.sampling_speed})
        connect(choice, &QComboBox::currentIndexChanged, this, &prefs_view::savePrefs);
    connect(ui.set_defaults, &QPushButton::clicked, this, &prefs_view::setDefaultsClicked);
}

void prefs_view::connect_tabs() {
    ui.device_name->setTextFormat(Qt::PlainText);
    connect(ui.device_change, &QPushButton::clicked, &context.link, &adapter_link::choose_bluetooth_device);
    connect(&context.link, &adapter_link::condition_changed, this, &prefs_view::show_device);
    connect(ui.test_start, &QPushButton::clicked, this, &prefs_view::test_connection);
    // The first answer of a vehicle lists what it reports.
    connect(&connection, &prefs_connection_trial::finished, this, [this] {
        pids.show_vehicle();
        vehicles.load_vehicles();
    });
    connect(&vehicles, &prefs_vehicles::about_to_change, this, &prefs_view::stop);
    connect(&vehicles, &prefs_vehicles::current_changed, &pids, &pid_chooser::show_vehicle);
}

void prefs_view::test_connection() {
    ui.tabs->setCurrentIndex(0);
    savePrefs();
    if (ui.wifi->isChecked() && !preferences::address_problem(typed_in(ui.address)).isEmpty())
        return ui.address->setFocus();
    if (ui.wifi->isChecked() && !preferences::port_problem(typed_in(ui.port)).isEmpty())
        return ui.port->setFocus();
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
    QRadioButton& kind = !now.link.isEmpty()                    ? *ui.other_link
                         : now.interface_kind == interface_wifi ? *ui.wifi
                                                                : *ui.bluetooth;
    kind.setChecked(true);
    other_link = now.link;
    ui.address->setText(now.wifi_ip);
    ui.port->setText(now.wifi_port);
    ui.metric_units->setChecked(now.metric_units);
    ui.log_runs->setChecked(now.log_runs);
    ui.time_stamps->setChecked(now.time_stamps);
    ui.sampling_speed->setCurrentIndex(now.sampling_speed);
    ui.reading_by_standard->setChecked(now.standard_reading);
    ui.anonymous->setChecked(now.anonymous);
    ui.store_position->setChecked(now.store_position);
    if (ui.sample_rate->findData(now.sample_rate) < 0) // set in the file by hand
        ui.sample_rate->addItem(QStringLiteral("Every %1 secs").arg(now.sample_rate), now.sample_rate);
    ui.sample_rate->setCurrentIndex(ui.sample_rate->findData(now.sample_rate));
    filling = false;
    handle_interface();
    show_problems();
}

general_settings prefs_view::chosen() const {
    general_settings what;
    what.link = ui.other_link->isChecked() ? other_link : QString();
    what.interface_kind = ui.wifi->isChecked()        ? interface_wifi
                          : ui.bluetooth->isChecked() ? interface_bluetooth
                                                      : settings.stored().interface_kind;
    what.wifi_ip = typed_in(ui.address);
    what.wifi_port = typed_in(ui.port);
    what.metric_units = ui.metric_units->isChecked();
    what.log_runs = ui.log_runs->isChecked();
    what.time_stamps = ui.time_stamps->isChecked();
    what.sample_rate = ui.sample_rate->currentData().toInt();
    what.sampling_speed = ui.sampling_speed->currentIndex();
    what.standard_reading = ui.reading_by_standard->isChecked();
    what.anonymous = ui.anonymous->isChecked();
    what.store_position = ui.store_position->isChecked();
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

// Which one it is stands in the list of links.
void prefs_view::choose_other_link(bool is_on) {
    if (!filling && is_on && other_link.isEmpty()) {
        setPrefsScreen(); // as before, until one is chosen there
        return context.frame.open_links();
    }
    savePrefs();
}

void prefs_view::setDefaultsClicked() {
    context.frame.ask(
        QStringLiteral("Set the defaults?"),
        QStringLiteral("Link, address, units, sample rate, speed and reading get the values of a new "
                       "installation, and so do the chosen PIDs of the current vehicle. \u201cLog "
                       "runs\u201d is switched on. Vehicles and logs stay."),
        {QStringLiteral("Set defaults"), QStringLiteral("Cancel")}, [this](bool yes) {
            if (yes)
                set_defaults();
        });
}

void prefs_view::set_defaults() {
    stop();
    const bool written = settings.restore_first_values();
    setPrefsScreen();
    pids.show_vehicle();
    tell_unless(written);
    context.frame.settings_changed();
    if (written)
        context.window.show_toast(QStringLiteral("The defaults are set. \u201cLog runs\u201d is on."));
}

void prefs_view::handle_interface() {
    ui.wifi_pane->setVisible(ui.wifi->isChecked());
    show_device();
    ui.run_note->setVisible(!link_of_this_run(context.core.options).isEmpty() &&
                            context.frame.link_is_as_started());
}

void prefs_view::show_device() {
    const adapter_place& place = context.link.place();
    ui.bluetooth_pane->setVisible(ui.bluetooth->isChecked() && place.interface_kind() == interface_bluetooth);
    ui.other_help->setText(words_of_other_link());
    const QString named = place.last_BT_Device() == place.bt_address()
                              ? place.bt_address()
                              : QStringLiteral("%1 (%2)").arg(place.last_BT_Device(), place.bt_address());
    ui.device_name->setText(place.bt_address().isEmpty() ? QStringLiteral("None chosen yet.") : named);
}

QString prefs_view::words_of_other_link() const {
    if (other_link == QLatin1String("any"))
        return QStringLiteral("Whatever of the known adapters is there.");
    const auto address = adapter_address::of(other_link);
    if (!address)
        return QStringLiteral("Chosen from the list of links, which also finds adapters by itself.");
    const auto known = context.delegate.adapters.with(*address);
    return QStringLiteral("%1: %2").arg(word_of_link(address->kind),
                                        known ? known->called() : address->where);
}

void prefs_view::show_problems() {
    show_problem(*ui.address_problem, *ui.address_help, preferences::address_problem(typed_in(ui.address)));
    show_problem(*ui.port_problem, *ui.port_help, preferences::port_problem(typed_in(ui.port)));
}

void prefs_view::tell_unless(bool written) {
    if (!written)
        context.frame.tell({QStringLiteral("The preferences cannot be kept"),
                            context.core.defaults.problem() +
                                QStringLiteral(" What you changed holds until the program ends.")});
}

} // namespace brivant
