#include "link/adapter_finder.h"

namespace brivant {

namespace {

bool is_worth_asking(const bluetooth_device& device) {
    return device.is_le ? device.may_be_adapter
                        : device.paired && (device.serial_port || device.may_be_adapter);
}

} // namespace

adapter_finder::adapter_finder(transport_maker make, timers& time_source)
    : clock(time_source), search(std::move(make), time_source), scanner(time_source) {
    connect(&search, &adapter_search::answered, this, [this] { take_step(); });
    connect(&scanner, &bluetooth_scanner::changed, this, &adapter_finder::look_around);
}

void adapter_finder::start(const QList<adapter_search::candidate>& known, const QStringList& ports) {
    stop();
    search.forget();
    is_over = false;
    of_the_radio.clear();
    radio_problem.clear();
    end_of_look = clock.one_shot(look_ms, [this] { ask_those_around(); });
    for (const adapter_search::candidate& one : known) {
        if (one.where.kind == interface_bluetooth || one.where.kind == interface_le)
            of_the_radio += one;
        else
            search.add(one);
    }
    for (const QString& port : ports)
        search.add({{interface_serial, port, 0}, QString()});
    for (const adapter_address& place : usual_wifi_places())
        search.add({place, QString()});
    scanner.start();
    Q_EMIT changed();
}

void adapter_finder::stop() {
    end_of_look.reset();
    scanner.stop();
    search.stop();
    is_over = true;
}

// The service was asked, and tells what it sees.
void adapter_finder::look_around() {
    if (!end_of_look)
        return;
    if (scanner.now() == bluetooth_scanner::phase::unusable) {
        radio_problem = scanner.sentence();
        end_of_look.reset();
        scanner.stop();
        return take_step();
    }
    if (scanner.now() == bluetooth_scanner::phase::done)
        return ask_those_around();
    Q_EMIT changed();
}

// Calling a device is slow while the radio looks for others.
void adapter_finder::ask_those_around() {
    end_of_look.reset();
    for (const adapter_search::candidate& one : std::as_const(of_the_radio))
        search.add(one);
    for (const bluetooth_device& device : scanner.devices()) {
        if (is_worth_asking(device))
            search.add({{device.is_le ? interface_le : interface_bluetooth, device.address, 0}, device.name});
    }
    scanner.stop();
    take_step();
}

void adapter_finder::take_step() {
    Q_EMIT changed();
    if (!is_running() && !std::exchange(is_over, true))
        Q_EMIT finished();
}

QString adapter_finder::sentence() const {
    const qsizetype found = adapters().size();
    const QString so_far = found == 0   ? QString()
                           : found == 1 ? QStringLiteral(" One has answered.")
                                        : QStringLiteral(" %1 have answered.").arg(found);
    if (is_running())
        return (end_of_look
                    ? QStringLiteral("Looking around by radio, and asking %1 places.").arg(search.left())
                    : QStringLiteral("Asking: %1 of %2 have not answered yet.")
                          .arg(search.left())
                          .arg(search.all())) +
               so_far;
    const QString radio = radio_problem.isEmpty() ? QString() : u' ' + radio_problem;
    if (found > 0)
        return found == 1 ? QStringLiteral("One adapter has answered.") + radio
                          : QStringLiteral("%1 adapters have answered. Which one?").arg(found) + radio;
    return QStringLiteral(
               "No adapter has answered. Is it plugged in and lit, and the ignition on? Over Wi-Fi, join "
               "the adapter's network first; by Bluetooth, pair it first.") +
           radio;
}

} // namespace brivant
