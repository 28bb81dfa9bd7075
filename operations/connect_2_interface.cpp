#include "operations/connect_2_interface.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"
#include "operations/inner_process_pid_support.h"
#include "operations/put_back_settings.h"

namespace brivant {

namespace {

constexpr int most_fixed_protocol_rounds = 20;
const QString ok = QStringLiteral("OK");
const QString automatic = QStringLiteral("A");
const QString protocol_names = QStringLiteral("AUTO|ISO|SAE");

car_talk::asking say(car_talk& car, const char* command, const QString& expected) {
    sent_command setting_up = command_of(QLatin1String(command) + u'\r', expected, false);
    setting_up.why = sent_command::purpose::sets_up;
    return car.send(setting_up);
}

// The number after the "A" of an automatically found protocol ("A6" gives 6); -1 when it was not told.
int protocol_number(const QString& told) {
    if (told.size() < 2 || told.at(0).toUpper() != u'A' || !is_hex(QStringView(told).sliced(1, 1)))
        return -1; // given up, or no data
    return static_cast<int>(convertStr2Byte(QStringView(told).sliced(1).left(2)));
}

// While a lost link is opened again by itself the car may be off: that is waited for, and needs no notice.
[[noreturn]] void give_up(car_talk& car, const QString& text) {
    if (!car.link.is_reconnecting())
        car.view.show_message(QString(), text);
    throw left{};
}

void keep_interface(car_talk& car, const QString& description) {
    car.show(fill(QStringLiteral("Interface : %@"), {description}));
    if (description != no_reply && !description.contains(ok))
        car.link.describe_interface(description.left(80));
    car.view.reload(part::labels);
}

void keep_protocol(car_talk& car, const QString& description) {
    car.link.describe_protocol(description);
    car.view.reload(part::labels);
}

// Asks for the protocol until it is one that the adapter looks for by itself.
talk make_protocol_automatic(car_talk& car) {
    bool was_refused = false;
    for (int rounds = 0; rounds <= most_fixed_protocol_rounds; ++rounds) {
        const reply protocol = co_await say(car, "AT DP", protocol_names);
        if (protocol.is_none() && std::exchange(was_refused, true)) {
            car.show("The adapter does not tell its protocol: unplug it, plug it in again and retry");
            throw left{};
        }
        if (!protocol.is_none() && car.link.adapter().protocol_description().isEmpty()) {
            car.show(fill(QStringLiteral(" %@"), {protocol.text()}));
            keep_protocol(car, protocol.text().left(80));
        }
        if (protocol.text().toUpper().contains(QLatin1String("AUTO")))
            co_return;
        if (rounds < most_fixed_protocol_rounds) // ISO 9141-2 is tried first
            co_await say(car, "AT SP A3", ok);
    }
    throw step_failure(
        QStringLiteral("the adapter does not go back to automatic protocol search: unplug it, plug "
                       "it in again and retry"));
}

// The first request makes the adapter look for the car's protocol, which it tells afterwards.
talk find_the_car(car_talk& car, bool echo_stays) {
    reply number = co_await say(car, "AT DPN", automatic);
    car.link.protocol_told(protocol_number(number.text()));
    sent_command first = command_of(QStringLiteral("01 00|12.0"), QStringLiteral("4100"), false);
    first.why = sent_command::purpose::sets_up;
    const reply pids = co_await car.send(first);
    if (pids.is_none())
        give_up(car, localised(QStringLiteral("DLG_FAILED_RCV_PIDS")));
    if (pids.holds_nothing()) {
        car.show("No data for [01 00] .. trying next");
    } else {
        car.show(fill(QStringLiteral("Initial  reply: (%@)"), {pids.text()}));
        const qsizetype ecus = pids.lines().filter(QStringLiteral("4100")).size();
        car.show(fill(QStringLiteral("No of ECUS: %d"), {QString::number(ecus)}));
    }
    number = co_await say(car, "AT DPN", automatic);
    car.link.protocol_told(protocol_number(number.text()));
    if (car.link.adapter().cur_protocol() == -1 && echo_stays)
        give_up(car,
                QStringLiteral("The adapter repeats every command and cannot be told not to (AT E0): its "
                               "answers cannot be read."));
    if (number.is_none())
        give_up(car, QStringLiteral("The adapter does not tell the protocol that it has found (AT DPN): what "
                                    "the car answers cannot be read."));
    if (car.link.adapter().cur_protocol() == -1)
        give_up(car, localised(QStringLiteral("DLG_FAILED_RCV_PIDS")));
    const QString name = car.toolies.lists()
                             .line(QStringLiteral("SUP_PROTOCOLS"), car.link.adapter().cur_protocol())
                             .value_or(number.text());
    car.show(fill(QStringLiteral("Interface : %@"), {name}));
    keep_protocol(car, name);
}

talk set_up(car_talk& car) {
    car.link.protocol_told(-1);
    const bool is_reset = !car.link.adapter().adapter_known() && car.link.may_be_reset();
    const reply greeting = co_await say(car, is_reset ? "AT Z" : "AT E0", QStringLiteral("OK|ELM"));
    if (!greeting.is_none())
        car.link.adapter_answered();
    const reply echo = co_await say(car, "AT E0", ok);
    car.show("Got a ECHO off from ELM chip");
    if (is_reset && !greeting.is_none())
        car.link.forget_changed_settings();
    co_await put_back_settings(car);
    const reply interface = co_await say(car, "AT I", QStringLiteral("ELM"));
    keep_interface(car, interface.text());
    co_await make_protocol_automatic(car);
    const reply headers = co_await say(car, "AT H1", ok);
    car.show(headers.holds_nothing() ? "AT H1 not supported by current chip" : "AT H1 replied OK");
    co_await find_the_car(car, echo.is_none());

    obd_groups found;
    co_await inner_process_pid_support(car, QStringLiteral("01"), found);
    car.show("Got the PIDs.. starting current task");
    if (!car.link.is_reconnecting() && !car.state.available_pids().isEmpty() &&
        !car.toolies.save_pids_available(car.state.available_pids()))
        console_log(QStringLiteral(
            "reacCods>m::connect_2_interface >> Did not save avail pids to VEHICLES.XTRA_INFO"));
    car.link.adapter_is_set_up();
}

} // namespace

talk connect_2_interface(car_talk& car) {
    for (;;) {
        link_lost fallen;
        try {
            co_await set_up(car);
            co_return;
        } catch (const link_lost& loss) {
            if (!loss.at_reset)
                throw;
            fallen = loss;
        } catch (const std::exception& reason) {
            throw failed{fill(QStringLiteral("connect_2_interface::Did not fully complete [ %@ ]"),
                              {QString::fromUtf8(reason.what())}),
                         false};
        }
        co_await car.again(fallen); // it comes back by itself, and is not reset any more
    }
}

} // namespace brivant
