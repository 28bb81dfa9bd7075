#include "diagnostics/reading_all.h"

#include "diagnostics/readCodes.h"

#include <array>

namespace brivant {

namespace {

struct part_to_read {
    const char* name;
    void (readCodes::*read)();
};
constexpr std::array<part_to_read, 5> all_parts{{
    {"codes", &readCodes::l_readCodes},
    {"pending codes and freeze frame", &readCodes::readPendingFreezeCodes},
    {"permanent codes", &readCodes::readPermanent},
    {"vehicle", &readCodes::readVehicleInfo},
    {"test results", &readCodes::readMode6Support},
}};

QString name_of(int number) {
    return QString::fromLatin1(all_parts.at(static_cast<size_t>(number - 1)).name);
}

} // namespace

int reading_all::parts() {
    return static_cast<int>(all_parts.size());
}

void reading_all::start() {
    failed.clear();
    at = 0;
    read_next();
}

void reading_all::give_up() {
    if (is_starting)
        return; // it is its own operation
    next.reset();
    at = 0;
}

void reading_all::read_next() {
    ++at;
    is_starting = true;
    (controller.*all_parts.at(static_cast<size_t>(at - 1)).read)();
    is_starting = false;
}

void reading_all::part_ended(bool done) {
    if (!is_on())
        return;
    if (!done && !controller.results.car_offers_none)
        failed += name_of(at);
    if (!controller.link.is_connected())
        return end();
    next = controller.link.time_source().one_shot(0, [this] {
        next.reset();
        const adapter_link& link = controller.link;
        const bool is_shown = link.mainViewController() == &controller;
        const bool goes_on = link.is_connected() && (failed.isEmpty() || link.adapter().adapter_ready());
        if (is_shown && goes_on && at < parts())
            read_next();
        else
            end();
    });
}

void reading_all::end() {
    const bool is_whole = at == parts();
    at = 0;
    if (is_whole)
        controller.show(failed.isEmpty() ? QStringLiteral("Everything was read")
                                         : QStringLiteral("Read, but not the ") + what_failed());
    controller.view.reload(part::operation);
}

QString reading_all::words() const {
    return is_on() ? QStringLiteral("Reading the %1, %2 of %3").arg(name_of(at)).arg(at).arg(parts())
                   : QString();
}

QString reading_all::what_failed() const {
    return failed.join(QStringLiteral(", "));
}

} // namespace brivant
