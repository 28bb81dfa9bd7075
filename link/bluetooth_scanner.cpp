#include "link/bluetooth_scanner.h"

namespace brivant {

void bluetooth_scanner::start() {
    stop();
    at = phase::asking;
    problem.clear();
    next_look = clock.repeating(look_every_ms, [this] { look(); });
    look();
    Q_EMIT changed();
}

void bluetooth_scanner::stop() {
    if (at == phase::scanning)
        service.stop_discovery(found.adapter);
    next_look.reset();
    end_of_scan.reset();
    at = phase::idle;
}

void bluetooth_scanner::look() {
    if (is_looking)
        return; // the service takes its time
    is_looking = true;
    service.look([this](const bluetooth_surroundings& surroundings) {
        is_looking = false;
        if (at != phase::idle)
            take(surroundings);
    });
}

void bluetooth_scanner::take(const bluetooth_surroundings& surroundings) {
    const phase before = at;
    const bool is_news = !(found == surroundings);
    found = surroundings;
    if (found.condition != bluetooth_condition::ready) {
        end_of_scan.reset();
        at = phase::unusable;
    } else if (at == phase::asking || at == phase::unusable) {
        begin_discovery();
    }
    if (is_news || at != before)
        Q_EMIT changed();
}

void bluetooth_scanner::begin_discovery() {
    at = phase::scanning;
    end_of_scan = clock.one_shot(scan_ms, [this] { end_discovery(); });
    service.start_discovery(found.adapter, [this](const QString& its_problem) {
        if (at == phase::scanning && !its_problem.isEmpty())
            end_discovery(its_problem);
    });
}

void bluetooth_scanner::end_discovery(const QString& its_problem) {
    problem = its_problem;
    service.stop_discovery(found.adapter);
    at = phase::done;
    end_of_scan.reset();
    Q_EMIT changed();
}

QString bluetooth_scanner::sentence() const {
    switch (at) {
    case phase::asking: return QStringLiteral("Asking the Bluetooth service ...");
    case phase::unusable: return why_unusable(found.condition);
    case phase::scanning:
        return QStringLiteral("Looking for devices. The adapter must be plugged in and lit.");
    case phase::done:
        if (!problem.isEmpty())
            return QStringLiteral(
                       "The search could not be started (%1). These are the devices known from before.")
                .arg(problem);
        return found.devices.isEmpty()
                   ? QStringLiteral(
                         "No device was found. Plug the adapter in, switch the ignition on, and look again.")
                   : QStringLiteral(
                         "Choose the adapter. One that is missing here is too far away, has no power, or "
                         "is connected to another device.");
    default: return {};
    }
}

} // namespace brivant
