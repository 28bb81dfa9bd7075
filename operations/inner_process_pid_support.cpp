#include "operations/inner_process_pid_support.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/reply_text.h"
#include "persistence/vehicles.h"

#include <QRegularExpression>
#include <algorithm>

namespace brivant {

namespace {

constexpr unsigned group_size = 0x20;
constexpr unsigned last_group = 0xE0;

bool is_the_car(const QString& service) {
    return service == QLatin1String("01");
}

// With headers the check is by message. Some chips refuse to show headers.
car_talk::asking ask_for_map(car_talk& car, const QString& service, unsigned group) {
    const QString request = service + u' ' + convertByte2HexStr(group);
    const bool shown = car.link.adapter().headers_shown();
    sent_command command = command_of(request + u'\r', shown ? QString() : positive_reply_of(request), shown);
    if (is_the_car(service))
        command.why = sent_command::purpose::sets_up;
    return car.send(command);
}

void take_maps(const QString& service, unsigned group, const reply& maps, obd_groups& found) {
    const QString answer = positive_reply_of(service + convertByte2HexStr(group));
    // The older protocols put a byte of their own before the maps of service 06.
    const qsizetype own_byte = service == QLatin1String("06") && !is_can(maps.protocol()) ? 2 : 0;
    const QString first_answer = maps.lines().filter(QRegularExpression(u'^' + answer)).value(0);
    add_supported_pids(found, maps, first_answer, answer, answer.size() + own_byte, group);
}

// A car that is silent to the first request of another service just does not offer it. While a lost link is
// opened again the car may be off, and is waited for; what a run needs of its maps is known.
void check_given_up(car_talk& car, const QString& service, unsigned group) {
    if (is_the_car(service) ? car.link.is_reconnecting() && group > 0 : group == 0)
        return;
    const QString text = group == 0 ? localised(QStringLiteral("DLG_FAILED_RCV_PIDS"))
                                    : QStringLiteral("Failed to receive available PIDs ");
    if (!car.link.is_reconnecting())
        car.view.show_message(QString(), text);
    throw left{};
}

talk make_sure_it_is_the_car(car_talk& car, const obd_groups& found) {
    if (car.link.is_reconnecting() && !car.state.available_pids().isEmpty())
        co_return; // other PIDs than before: a module that is not awake yet
    if (!car.toolies.checkIfSameVehicle(found)) {
        const auto stored = vehicle_with_id(car.toolies.store(), car.state.cur_veh_id());
        const QString title = localised(QStringLiteral("LBL_VEH_DIFF_CONTINUE"));
        const QString text =
            fill(localised(QStringLiteral("DLG_VEH_DIFF_CONTINUE")), {stored ? stored->name : QString()});
        if (const bool yes = co_await car.ask_same_car(title, text); !yes) {
            car.link.stop_opening(); // nor is it tried again
            throw left{};
        }
        car.toolies.fixSamplePidsFornewVehicle(found);
    }
    car.pids_told(found);
}

} // namespace

talk inner_process_pid_support(car_talk& car, QString service, obd_groups& found) {
    try {
        for (unsigned group = 0; group <= last_group; group += group_size) {
            if (group > 0 && !is_map_announced(found, group))
                break;
            const reply maps = co_await ask_for_map(car, service, group);
            if (maps.is_none())
                check_given_up(car, service, group);
            if (maps.holds_nothing()) {
                car.show(fill(QStringLiteral("No data for [%@ %@] .. trying next"),
                              {service, convertByte2HexStr(group)}));
                break;
            }
            take_maps(service, group, maps, found);
        }
        if (is_the_car(service) && !found.isEmpty())
            co_await make_sure_it_is_the_car(car, found);
    } catch (const std::exception& failure) {
        console_log(QStringLiteral("l_inner_process_pid_support: %1").arg(QString::fromUtf8(failure.what())));
        throw left{};
    }
}

} // namespace brivant
