#include "link/adapter_address.h"
#include "position/gpsd_place.h"
#include "shell/pid_choice.h"
#include "shell/preferences.h"
#include "shell/vehicle_list.h"
#include "terminal/profile_command.h"
#include "updates/update_check.h"

#include <QJsonArray>
#include <algorithm>

namespace brivant {

namespace {

// What is wrong with a typed text, as a sentence; "" when it is good.
struct text_check {
    const setting_row& row;
    QString (*problem)(const QString& typed);
};

QString device_problem(const QString& value) {
    return is_bluetooth_address(value)
               ? QString()
               : QStringLiteral("The address of a Bluetooth device has six bytes: 00:1D:A5:68:98:8B.");
}

QString device_name_problem(const QString& value) {
    const qsizetype longest = setting::bluetooth_name.bound.longest;
    return value.size() <= longest ? QString()
                                   : QStringLiteral("A name has at most %1 characters.").arg(longest);
}

QString link_problem(const QString& value) {
    const auto address = adapter_address::of(value);
    const bool is_other = address && (address->kind == interface_serial || address->kind == interface_le);
    return value.isEmpty() || value == QLatin1String("any") || is_other
               ? QString()
               : QStringLiteral("The link is written usb:/dev/ttyUSB0, usb:/dev/ttyUSB0:115200, "
                                "ble:00:1D:A5:68:98:8B or any; nothing for Bluetooth or Wi-Fi.");
}

QString server_problem(const QString& value) {
    return value.isEmpty() ? QString() : update_server_problem(value);
}

QString gpsd_problem(const QString& value) {
    return gpsd_place::of(value) ? QString()
                                 : QStringLiteral("Where gpsd answers is written localhost:2947, "
                                                  "192.168.0.20:2947 or [fe80::1%eth0]:2947.");
}

const text_check text_checks[] = {
    {setting::wifi_ip, preferences::address_problem},
    {setting::wifi_port, preferences::port_problem},
    {setting::bluetooth_address, device_problem},
    {setting::bluetooth_name, device_name_problem},
    {setting::link, link_problem},
    {setting::update_server, server_problem},
    {setting::gpsd, gpsd_problem},
};

QStringList items_of(const QString& value) {
    return value.split(u',', Qt::SkipEmptyParts);
}

QString sample_set_problem(const QString& value) {
    const QStringList items = items_of(value);
    for (const QString& item : items) {
        if (!split_sample_item(item))
            return QStringLiteral("%1 is no PID: a sample set is written 0D,11,0C|7E8.").arg(item.left(40));
    }
    return items.size() <= pid_choice::most_chosen
               ? QString()
               : QStringLiteral("No more than %1 values can be sampled.").arg(pid_choice::most_chosen);
}

bool is_good_number(const setting_row& row, const QString& value) {
    const auto is_typed = [&](int number) { return QString::number(number) == value; };
    if (row == setting::sample_rate)
        return std::any_of(setting::sample_rates.begin(), setting::sample_rates.end(), is_typed);
    const QVariant taken = row.checked(value);
    return taken.isValid() && is_typed(taken.toInt());
}

QString problem_of(const setting_row& row, const QString& value) {
    if (row.type == setting_row::kind::flag)
        return value == QLatin1String("true") || value == QLatin1String("false")
                   ? QString()
                   : QStringLiteral("The value is true or false.");
    if (row.type == setting_row::kind::number)
        return is_good_number(row, value)
                   ? QString()
                   : QStringLiteral("%1 is %2.").arg(row.file_key(), QLatin1String(row.words));
    if (row == setting::sample_set)
        return sample_set_problem(value);
    for (const text_check& check : text_checks) {
        if (check.row == row)
            return check.problem(value);
    }
    return {};
}

// The setting of that name, where a person may ask for it.
std::optional<setting_row> setting_named(const QString& key) {
    const std::optional<setting_row> row = setting::with_key(key);
    return row && row->who == setting::person ? row : std::nullopt;
}

QJsonValue value_of(const profile_context& context, const setting_row& row) {
    if (row == setting::current_vehicle)
        return context.core.car.cur_veh_id();
    return QJsonValue::fromVariant(context.core.defaults.value_in_force(row));
}

QString as_text(const QJsonValue& value) {
    if (!value.isArray())
        return value.toVariant().toString();
    QStringList items;
    const QJsonArray array = value.toArray();
    for (const QJsonValue item : array)
        items += item.toString();
    return items.join(u',');
}

QList<setting_row> persons_settings(const profile_context& context) {
    QList<setting_row> rows;
    for (const setting_row* row : setting::all) {
        if (row->who == setting::person && *row != setting::sample_set)
            rows += *row;
    }
    for (const vehicle& one : all_vehicles(context.core.db))
        rows += setting::sample_set.of_vehicle(one.id);
    return rows;
}

// As the PIDs tab does: what the vehicle is known not to report cannot be chosen. "" when it was stored.
QString store_sample_set(const profile_context& context, int veh_id, const QString& value) {
    if (!vehicle_with_id(context.core.db, veh_id))
        return QStringLiteral("There is no vehicle with the number %1.").arg(veh_id);
    const obd_groups available = grab_pids_available(context.core.db, veh_id);
    const pid_choice choice(available, items_of(value), context.toolies);
    for (const pid_entry& entry : choice.chosen()) {
        if (!available.isEmpty() && !entry.reported)
            return QStringLiteral("The vehicle does not report %1.").arg(entry.item);
    }
    context.core.defaults.set(setting::sample_set.of_vehicle(veh_id), choice.items());
    return {};
}

QString store(const profile_context& context, const setting_row& row, const QString& value) {
    if (row == setting::sample_set)
        return store_sample_set(context, row.vehicle, value);
    if (row == setting::current_vehicle)
        return context.core.vehicles.setCurrentCar(value.toInt());
    context.core.defaults.store(row, row.value_of(value));
    return {};
}

} // namespace

QString wrong_settings_words(const QStringList& words) {
    const QString what = words.value(0);
    const bool gets = what == QLatin1String("get") && words.size() <= 2;
    if (!gets && (what != QLatin1String("set") || words.size() != 3))
        return QStringLiteral("The words after settings are: get, get KEY, or set KEY VALUE.");
    if (words.size() == 1)
        return {};
    const std::optional<setting_row> row = setting_named(words.at(1));
    if (!row)
        return QStringLiteral("There is no setting %1: settings get lists them.").arg(words.at(1).left(60));
    return gets ? QString() : problem_of(*row, words.at(2));
}

command_result run_settings(const profile_context& context, const QStringList& words) {
    command_result result;
    const bool sets = words.first() == QLatin1String("set");
    const bool one = words.size() > 1;
    const QList<setting_row> rows =
        one ? QList<setting_row>{*setting_named(words.at(1))} : persons_settings(context);
    if (sets) {
        result.problem = store(context, rows.first(), words.at(2));
        if (result.problem.isEmpty() && !context.core.defaults.synchronise())
            result.problem = context.core.defaults.problem();
    }
    QJsonObject values;
    for (const setting_row& row : rows) {
        const QJsonValue value = value_of(context, row);
        values.insert(row.file_key(), value);
        if (!sets)
            result.text += one ? as_text(value) + u'\n'
                               : QStringLiteral("%1 = %2\n").arg(row.file_key(), as_text(value));
    }
    result.json.insert(QStringLiteral("settings"), values);
    return result;
}

} // namespace brivant
