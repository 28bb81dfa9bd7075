#include "shell/preferences.h"

#include "base/anonymity.h"

#include <QHostAddress>

#include <algorithm>

namespace brivant {

namespace {

constexpr int highest_port = 65535;

bool same_link(const general_settings& one, const general_settings& other) {
    return one.link == other.link && one.interface_kind == other.interface_kind &&
           one.wifi_ip == other.wifi_ip && one.wifi_port == other.wifi_port;
}

bool looks_like_ipv4(const QString& address) {
    return address.contains(u'.') &&
           std::all_of(address.begin(), address.end(), [](QChar c) { return c == u'.' || c.isDigit(); });
}

} // namespace

preferences::preferences(user_defaults& settings, adapter_place& its_place, adapter_link& its_link,
                         mac_toolies& its_toolies)
    : defaults(settings), place(its_place), link(its_link), toolies(its_toolies) {}

general_settings preferences::stored() const {
    return {.link = defaults.value(setting::link),
            .interface_kind = defaults.value(setting::interface_kind),
            .wifi_ip = defaults.value(setting::wifi_ip),
            .wifi_port = defaults.value(setting::wifi_port),
            .metric_units = defaults.value(setting::metric_units),
            .log_runs = defaults.value(setting::log_runs),
            .time_stamps = defaults.value(setting::time_stamps),
            .sample_rate = defaults.value(setting::sample_rate),
            .sampling_speed = defaults.value(setting::sampling_speed),
            .standard_reading = defaults.value(setting::standard_reading),
            .anonymous = defaults.value(setting::anonymous),
            .store_position = defaults.value(setting::store_position)};
}

bool preferences::changes_link(const general_settings& chosen) const {
    const general_settings now = stored();
    if (chosen.link != now.link)
        return true;
    if (chosen.interface_kind != now.interface_kind || chosen.interface_kind != interface_wifi)
        return chosen.interface_kind != now.interface_kind;
    return (chosen.wifi_ip != now.wifi_ip && address_problem(chosen.wifi_ip).isEmpty()) ||
           (chosen.wifi_port != now.wifi_port && port_problem(chosen.wifi_port).isEmpty());
}

bool preferences::store(const general_settings& chosen) {
    const general_settings before = stored();
    store_link(chosen);
    if (chosen.metric_units != before.metric_units)
        defaults.choose(setting::metric_units, chosen.metric_units);
    if (chosen.log_runs != before.log_runs)
        defaults.choose(setting::log_runs, chosen.log_runs);
    if (chosen.time_stamps != before.time_stamps)
        defaults.set(setting::time_stamps, chosen.time_stamps);
    if (chosen.sample_rate != before.sample_rate)
        defaults.set(setting::sample_rate, chosen.sample_rate);
    if (chosen.sampling_speed != before.sampling_speed)
        defaults.choose(setting::sampling_speed, chosen.sampling_speed);
    if (chosen.standard_reading != before.standard_reading)
        defaults.choose(setting::standard_reading, chosen.standard_reading);
    if (chosen.anonymous != before.anonymous)
        defaults.choose(setting::anonymous, chosen.anonymous);
    if (chosen.store_position != before.store_position)
        defaults.set(setting::store_position, chosen.store_position);
    set_anonymous(defaults.value(setting::anonymous));
    put_in_force(before);
    return defaults.synchronise();
}

// The address and the port count only for Wi-Fi.
void preferences::store_link(const general_settings& chosen) {
    const general_settings before = stored();
    if (chosen.link != before.link)
        defaults.set(setting::link, chosen.link);
    if (chosen.interface_kind != before.interface_kind)
        defaults.set(setting::interface_kind, chosen.interface_kind);
    if (chosen.interface_kind != interface_wifi)
        return;
    if (chosen.wifi_ip != before.wifi_ip && address_problem(chosen.wifi_ip).isEmpty())
        defaults.set(setting::wifi_ip, chosen.wifi_ip);
    if (chosen.wifi_port != before.wifi_port && port_problem(chosen.wifi_port).isEmpty())
        defaults.set(setting::wifi_port, chosen.wifi_port);
}

void preferences::put_in_force(const general_settings& before) {
    const general_settings now = stored();
    if (same_link(before, now))
        return;
    place.choose_wifi(now.wifi_ip, now.wifi_port);
    place.choose(now.interface_kind);
    if (const auto other = adapter_address::of(now.link))
        place.choose(*other, QString());
    link.l_leave_cur_op_gracefully(QStringLiteral(""));
    link.disconnect(); // it leads to the old place
}

bool preferences::restore_first_values() {
    const general_settings before = stored();
    toolies.setDefaults();
    defaults.set(setting::link, QString());
    defaults.choose(setting::metric_units, setting::metric_units.first_value());
    defaults.choose(setting::sampling_speed, setting::sampling_speed.first_value());
    put_in_force(before);
    return defaults.synchronise();
}

QString preferences::address_problem(const QString& address) {
    if (address.isEmpty())
        return QStringLiteral("Type the address of the adapter. Most answer at 192.168.0.10.");
    if (std::any_of(address.begin(), address.end(), [](QChar c) { return c.isSpace() || !c.isPrint(); }))
        return QStringLiteral("An address has no blanks.");
    if (address.size() > setting::wifi_ip.bound.longest)
        return QStringLiteral("An address has at most %1 characters.").arg(setting::wifi_ip.bound.longest);
    if (address.contains(u'/'))
        return QStringLiteral("Only the address itself, without \"//\" and what follows it: 192.168.0.10.");
    if (address.count(u':') == 1)
        return QStringLiteral("The port has its own field below.");
    if (address.contains(u':') && QHostAddress(address).protocol() != QAbstractSocket::IPv6Protocol)
        return QStringLiteral("An IPv6 address stands without brackets: fe80::1, or fe80::1%wlan0.");
    if (looks_like_ipv4(address) && QHostAddress(address).toString() != address)
        return QStringLiteral("An address in digits has four numbers from 0 to 255: 192.168.0.10.");
    return {};
}

QString preferences::port_problem(const QString& port) {
    const bool digits = !port.isEmpty() && port.size() <= setting::wifi_port.bound.longest &&
                        std::all_of(port.begin(), port.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    const int number = digits ? port.toInt() : 0;
    return number >= 1 && number <= highest_port
               ? QString()
               : QStringLiteral("A port is a whole number from 1 to 65535.");
}

} // namespace brivant
