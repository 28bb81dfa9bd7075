#include "shell/adapter_list.h"

#include "link/serial_ports.h"

#include <algorithm>

namespace brivant {

namespace {

const QString any_link = QStringLiteral("any");

bool is_same(const adapter_address& one, const adapter_address& other) {
    return one.kind == other.kind && one.key() == other.key();
}

} // namespace

adapter_address lasting(adapter_address where) {
    if (where.kind == interface_serial)
        where.where = stable_port_name(where.where);
    return where;
}

adapter_list::adapter_list(user_defaults& settings, adapter_place& its_place, adapter_link& its_link,
                           const car_state& its_car)
    : defaults(settings), place(its_place), link(its_link), car(its_car) {
    connect(&link, &adapter_link::adapter_set_up, this, &adapter_list::note_use);
    connect(&link, &adapter_link::place_chosen, this, [this] { use(place.now(), place.device_called()); });
    connect(&link, &adapter_link::device_taken, this, [this] {
        defaults.set(setting::bluetooth_address, place.bt_address());
        defaults.set(setting::bluetooth_name, place.last_BT_Device());
        defaults.synchronise();
    });
    link.lead_before_opening = [this] { return lead_before_opening(); };
}

// --- where the link goes -----------------------------------------------------------------------------------

void adapter_list::read_place() {
    place.choose(defaults.value(setting::interface_kind));
    if (place.interface_kind() == interface_wifi)
        place.choose_wifi(defaults.value(setting::wifi_ip), defaults.value(setting::wifi_port));
    const QString device = defaults.value(setting::bluetooth_address).toUpper();
    if (is_bluetooth_address(device))
        place.take_device(
            device, defaults.has(setting::bluetooth_name) ? defaults.value(setting::bluetooth_name) : device);
    if (const auto chosen = adapter_address::of(defaults.value(setting::link)))
        place.choose(lasting(*chosen), with(lasting(*chosen)).value_or(known_adapter()).name);
}

void adapter_list::place_is_given(bool its_demo) {
    is_given = true;
    is_demo = its_demo;
}

bool adapter_list::takes_any() const {
    return !is_given && defaults.value(setting::link) == any_link;
}

bool adapter_list::is_in_force(const adapter_address& where) const {
    return is_same(place.now(), where);
}

// An operation is about to open the link. What is returned is looked for: the first that answers is taken.
QList<adapter_search::candidate> adapter_list::lead_before_opening() {
    const QList<known_adapter> adapters = known();
    const auto preferred = std::find_if(adapters.begin(), adapters.end(), [&](const known_adapter& one) {
        return one.vehicles.contains(car.cur_veh_id());
    });
    if (!is_given && preferred != adapters.end() && !is_in_force(preferred->where)) {
        place.choose(preferred->where, preferred->name);
    } else if (takes_any() && preferred == adapters.end()) {
        QList<adapter_search::candidate> candidates;
        for (const known_adapter& one : adapters)
            candidates += {one.where, one.name};
        return candidates;
    }
    const known_adapter here = with(place.now()).value_or(known_adapter());
    if (place.interface_kind() == interface_serial && place.serial_speed() == 0)
        place.take_speed(here.where.number);
    if (here.falls_at_reset)
        link.do_not_reset();
    return {};
}

void adapter_list::lead_to(const adapter_address& where, const QString& name) {
    is_given = false;
    if (is_in_force(where) && link.is_connected())
        return;
    if (!is_in_force(where)) {
        link.l_leave_cur_op_gracefully(QStringLiteral("")); // it runs over another one
        link.disconnect();
    }
    place.choose(where, name);
}

bool adapter_list::use(const adapter_address& chosen, const QString& name) {
    const adapter_address where = lasting(chosen);
    const bool is_stored_elsewhere = where.kind == interface_serial || where.kind == interface_le;
    defaults.set(setting::link, is_stored_elsewhere ? where.text() : QString());
    if (!is_stored_elsewhere)
        defaults.set(setting::interface_kind, where.kind);
    if (where.kind == interface_wifi) {
        defaults.set(setting::wifi_ip, where.where);
        defaults.set(setting::wifi_port, QString::number(where.number));
    } else if (where.kind == interface_bluetooth) {
        defaults.set(setting::bluetooth_address, where.where);
        defaults.set(setting::bluetooth_name, name.isEmpty() ? where.where : name);
    }
    lead_to(where, name);
    return change(where, [&](known_adapter& one) {
        if (!one.is_named && !name.isEmpty())
            one.name = cleaned_name(name);
    });
}

bool adapter_list::use_any() {
    is_given = false;
    defaults.set(setting::link, any_link);
    Q_EMIT changed();
    return defaults.synchronise();
}

// --- what is known of them ---------------------------------------------------------------------------------

QList<known_adapter> adapter_list::known() const {
    return known_adapters_in(defaults.value(setting::known_adapters));
}

std::optional<known_adapter> adapter_list::with(const adapter_address& where) const {
    for (const known_adapter& one : known()) {
        if (is_same(one.where, where))
            return one;
    }
    return std::nullopt;
}

std::optional<known_adapter> adapter_list::named(const QString& word) const {
    for (const known_adapter& one : known()) {
        if (one.name.compare(word, Qt::CaseInsensitive) == 0 || one.where.text() == word ||
            one.where.where.compare(word, Qt::CaseInsensitive) == 0)
            return one;
    }
    return std::nullopt;
}

bool adapter_list::rename(const adapter_address& where, const QString& name) {
    return change(where, [&](known_adapter& one) {
        one.name = cleaned_name(name);
        one.is_named = !one.name.isEmpty();
    });
}

bool adapter_list::prefer(const adapter_address& where, int veh_id, bool is_preferred) {
    QList<known_adapter> adapters = known();
    for (known_adapter& one : adapters) { // a vehicle prefers one
        one.vehicles.removeAll(veh_id);
        if (is_preferred && is_same(one.where, where))
            one.vehicles += veh_id;
    }
    return keep(adapters);
}

bool adapter_list::forget(const adapter_address& where) {
    QList<known_adapter> adapters = known();
    adapters.removeIf([&](const known_adapter& one) { return is_same(one.where, where); });
    return keep(adapters);
}

// One that is not known yet becomes so.
bool adapter_list::change(const adapter_address& where, const std::function<void(known_adapter&)>& how) {
    QList<known_adapter> adapters = known();
    auto found = std::find_if(adapters.begin(), adapters.end(),
                              [&](const known_adapter& one) { return is_same(one.where, where); });
    if (found == adapters.end()) {
        found = adapters.insert(adapters.end(), known_adapter());
        found->where = where;
    }
    how(*found);
    return keep(adapters);
}

bool adapter_list::keep(const QList<known_adapter>& adapters) {
    const QStringList lines = lines_of(adapters);
    if (lines == defaults.value(setting::known_adapters))
        return defaults.synchronise();
    defaults.set(setting::known_adapters, lines);
    const bool is_stored = defaults.synchronise();
    Q_EMIT changed();
    return is_stored;
}

void adapter_list::note_use() {
    const adapter_address where = place.now();
    if (is_demo || where.where.isEmpty())
        return;
    change(where, [&](known_adapter& one) {
        one.where = where; // with the speed that was found
        if (!one.is_named && place.is_device() && place.device_called() != where.where)
            one.name = cleaned_name(place.device_called());
        if (const QString told = cleaned_name(link.adapter().interface_description()); !told.isEmpty())
            one.greeting = told;
        one.last_used = QDate::currentDate();
        one.falls_at_reset = !link.may_be_reset();
    });
}

} // namespace brivant
