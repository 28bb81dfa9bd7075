#include "shell/preferences.h"

#include <QHostAddress>

#include <algorithm>

namespace {

// As many characters as start-up reads back.
constexpr qsizetype longest_address = 30;
constexpr qsizetype longest_port = 10;
constexpr int highest_port = 65535;

bool same_link(const general_settings& one, const general_settings& other) {
    return one.interface_kind == other.interface_kind && one.wifi_ip == other.wifi_ip &&
           one.wifi_port == other.wifi_port;
}

bool looks_like_ipv4(const QString& address) {
    return address.contains(u'.') &&
           std::all_of(address.begin(), address.end(), [](QChar c) { return c == u'.' || c.isDigit(); });
}

} // namespace

preferences::preferences(user_defaults& settings, process_state& process, adapter_link& its_link,
                         mac_toolies& its_toolies)
    : defaults(settings), state(process), link(its_link), toolies(its_toolies) {}

general_settings preferences::stored() const {
    general_settings now;
    const int kind = defaults.integer(QStringLiteral("BV_interface"), interface_bluetooth);
    now.interface_kind = kind == interface_bluetooth || kind == 0 ? interface_bluetooth : interface_wifi;
    now.wifi_ip = defaults.text(QStringLiteral("wifi_IP"), QStringLiteral("192.168.0.10"), longest_address);
    now.wifi_port = defaults.text(QStringLiteral("wifi_port"), QStringLiteral("35000"), longest_port);
    now.metric_units = defaults.boolean(QStringLiteral("BV_metric_units"), false);
    now.log_runs = defaults.boolean(QStringLiteral("BV_log_runs"), false);
    now.time_stamps = defaults.boolean(QStringLiteral("BV_log_timeStamp"), false);
    now.sample_rate = defaults.integer(QStringLiteral("BV_sample_rate"), -1);
    now.standard_reading = toolies.standard_reading();
    return now;
}

bool preferences::changes_link(const general_settings& chosen) const {
    const general_settings now = stored();
    if (chosen.interface_kind != now.interface_kind || chosen.interface_kind != interface_wifi)
        return chosen.interface_kind != now.interface_kind;
    return (chosen.wifi_ip != now.wifi_ip && address_problem(chosen.wifi_ip).isEmpty()) ||
           (chosen.wifi_port != now.wifi_port && port_problem(chosen.wifi_port).isEmpty());
}

bool preferences::store(const general_settings& chosen) {
    const general_settings before = stored();
    store_link(chosen);
    if (chosen.metric_units != before.metric_units)
        store_units(chosen.metric_units);
    if (chosen.log_runs != before.log_runs)
        defaults.set(QStringLiteral("BV_log_runs"), chosen.log_runs);
    if (chosen.time_stamps != before.time_stamps)
        defaults.set(QStringLiteral("BV_log_timeStamp"), chosen.time_stamps);
    if (chosen.sample_rate != before.sample_rate)
        defaults.set(QStringLiteral("BV_sample_rate"), chosen.sample_rate);
    if (chosen.standard_reading != before.standard_reading)
        toolies.set_standard_reading(chosen.standard_reading);
    put_in_force(!same_link(before, stored()));
    return defaults.synchronise();
}

// The address and the port count only for Wi-Fi.
void preferences::store_link(const general_settings& chosen) {
    const general_settings before = stored();
    if (chosen.interface_kind != before.interface_kind)
        defaults.set(QStringLiteral("BV_interface"), chosen.interface_kind);
    if (chosen.interface_kind != interface_wifi)
        return;
    if (chosen.wifi_ip != before.wifi_ip && address_problem(chosen.wifi_ip).isEmpty())
        defaults.set(QStringLiteral("wifi_IP"), chosen.wifi_ip);
    if (chosen.wifi_port != before.wifi_port && port_problem(chosen.wifi_port).isEmpty())
        defaults.set(QStringLiteral("wifi_port"), chosen.wifi_port);
}

// The units given on the command line hold until the person chooses others.
void preferences::store_units(bool metric) {
    const QString key = QStringLiteral("BV_metric_units");
    defaults.set(key, metric);
    if (defaults.boolean(key, metric) != metric)
        defaults.override_for_this_run(key, metric);
}

void preferences::put_in_force(bool link_changed) {
    const general_settings now = stored();
    state.metric_units = now.metric_units;
    state.log_runs = now.log_runs;
    if (!link_changed)
        return;
    state.interface_kind = now.interface_kind;
    state.wifi_ip = now.wifi_ip;
    state.wifi_port = now.wifi_port;
    link.l_leave_cur_op_gracefully(QStringLiteral(""));
    link.disconnect(); // it leads to the old place
}

bool preferences::restore_first_values() {
    const general_settings before = stored();
    toolies.setDefaults();
    store_units(false);
    put_in_force(!same_link(before, stored()));
    return defaults.synchronise();
}

QString preferences::address_problem(const QString& address) {
    if (address.isEmpty())
        return QStringLiteral("Type the address of the adapter. Most answer at 192.168.0.10.");
    if (std::any_of(address.begin(), address.end(), [](QChar c) { return c.isSpace() || !c.isPrint(); }))
        return QStringLiteral("An address has no blanks.");
    if (address.size() > longest_address)
        return QStringLiteral("An address has at most %1 characters.").arg(longest_address);
    if (address.contains(u'/'))
        return QStringLiteral("Only the address itself, without \"//\" and what follows it: 192.168.0.10.");
    if (address.count(u':') == 1)
        return QStringLiteral("The port has its own field below.");
    if (looks_like_ipv4(address) && QHostAddress(address).toString() != address)
        return QStringLiteral("An address in digits has four numbers from 0 to 255: 192.168.0.10.");
    return {};
}

QString preferences::port_problem(const QString& port) {
    const bool digits = !port.isEmpty() && port.size() <= longest_port &&
                        std::all_of(port.begin(), port.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    const int number = digits ? port.toInt() : 0;
    return number >= 1 && number <= highest_port
               ? QString()
               : QStringLiteral("A port is a whole number from 1 to 65535.");
}
