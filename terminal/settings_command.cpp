#include "link/bluetooth_service.h"
#include "persistence/log_files.h"
#include "shell/pid_choice.h"
#include "shell/preferences.h"
#include "shell/vehicle_list.h"
#include "terminal/profile_command.h"
#include "updates/update_check.h"

#include <QJsonArray>
#include <array>

namespace {

constexpr int rate_count = 6;
constexpr qsizetype longest_device_name = 100;
const QString sample_sets = QStringLiteral("pidsSampleArray_");

enum class kind { number, boolean, text };

// A setting that stands by itself: its key, its value when it is missing, and what is wrong with a typed one.
struct setting {
    const char* key;
    kind type;
    const char* if_missing;
    QString (*check)(const QString& value);
};

QString interface_problem(const QString& value) {
    return value == QLatin1String("5") || value == QLatin1String("6")
               ? QString()
               : QStringLiteral("BV_interface is 5 (Bluetooth) or 6 (Wi-Fi).");
}

QString boolean_problem(const QString& value) {
    return value == QLatin1String("true") || value == QLatin1String("false")
               ? QString()
               : QStringLiteral("The value is true or false.");
}

QString rate_problem(const QString& value) {
    QStringList rates;
    for (int i = 0; i < rate_count; ++i)
        rates += QString::number(secs_4_sampling(i));
    return rates.contains(value)
               ? QString()
               : QStringLiteral("BV_sample_rate is -1 (as fast as available) or one of these "
                                "numbers of seconds: %1.")
                     .arg(rates.sliced(1).join(QLatin1String(", ")));
}

QString device_problem(const QString& value) {
    return is_bluetooth_address(value)
               ? QString()
               : QStringLiteral("The address of a Bluetooth device has six bytes: 00:1D:A5:68:98:8B.");
}

QString device_name_problem(const QString& value) {
    return value.size() <= longest_device_name
               ? QString()
               : QStringLiteral("A name has at most %1 characters.").arg(longest_device_name);
}

QString server_problem(const QString& value) {
    return value.isEmpty() ? QString() : update_server_problem(value);
}

// clang-format off
constexpr std::array<setting, 11> settings{{
    {"BV_interface",        kind::number,  "5",            interface_problem},
    {"wifi_IP",             kind::text,    "192.168.0.10", preferences::address_problem},
    {"wifi_port",           kind::text,    "35000",        preferences::port_problem},
    {"BV_metric_units",     kind::boolean, "false",        boolean_problem},
    {"BV_log_runs",         kind::boolean, "false",        boolean_problem},
    {"BV_log_timeStamp",    kind::boolean, "false",        boolean_problem},
    {"BV_sample_rate",      kind::number,  "-1",           rate_problem},
    {"BV_standard_reading", kind::boolean, "false",        boolean_problem},
    {"BV_last_BT",          kind::text,    "",             device_problem},
    {"Last_BT_device",      kind::text,    "",             device_name_problem},
    {update_server_key,     kind::text,    "",             server_problem},
}};
// clang-format on

const QString current_vehicle = QStringLiteral("BV_cur_veh_id");

const setting* find_setting(const QString& key) {
    for (const setting& one : settings) {
        if (key == QLatin1String(one.key))
            return &one;
    }
    return nullptr;
}

// The vehicle whose sample set the key names, -1 for another key.
int vehicle_of_sample_set(const QString& key) {
    bool ok = false;
    const int id = key.startsWith(sample_sets) ? key.sliced(sample_sets.size()).toInt(&ok) : -1;
    return ok && id > 0 ? id : -1;
}

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

QJsonValue value_of(const profile_context& context, const QString& key) {
    const user_defaults& defaults = context.core.defaults;
    if (key == current_vehicle)
        return context.core.state.cur_veh_id;
    const setting* known = find_setting(key);
    if (!known)
        return QJsonArray::fromStringList(defaults.list(key, first_sample_pids()));
    const QString if_missing = QLatin1String(known->if_missing);
    switch (known->type) {
    case kind::number: return defaults.integer(key, if_missing.toInt());
    case kind::boolean: return defaults.boolean(key, false);
    default: return defaults.text(key, if_missing);
    }
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

QStringList all_keys(const profile_context& context) {
    QStringList keys;
    for (const setting& one : settings)
        keys += QLatin1String(one.key);
    keys += current_vehicle;
    for (const vehicle& one : all_vehicles(context.core.db))
        keys += sample_set_key(one.id);
    return keys;
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
    context.core.defaults.set(sample_set_key(veh_id), choice.items());
    return {};
}

QString store(const profile_context& context, const QString& key, const QString& value) {
    if (const int veh_id = vehicle_of_sample_set(key); veh_id > 0)
        return store_sample_set(context, veh_id, value);
    if (key == current_vehicle)
        return vehicle_list(context.core.state, context.core.defaults, context.toolies)
            .setCurrentCar(value.toInt());
    switch (find_setting(key)->type) {
    case kind::number: context.core.defaults.set(key, value.toInt()); break;
    case kind::boolean: context.core.defaults.set(key, value == QLatin1String("true")); break;
    default: context.core.defaults.set(key, value);
    }
    return {};
}

} // namespace

QString wrong_settings_words(const QStringList& words) {
    const QString what = words.value(0);
    const QString key = words.value(1);
    const QString value = words.value(2);
    const bool gets = what == QLatin1String("get") && words.size() <= 2;
    if (!gets && (what != QLatin1String("set") || words.size() != 3))
        return QStringLiteral("The words after settings are: get, get KEY, or set KEY VALUE.");
    const setting* known = find_setting(key);
    const bool is_set = vehicle_of_sample_set(key) > 0;
    if (!known && !is_set && key != current_vehicle && words.size() > 1)
        return QStringLiteral("There is no setting %1: settings get lists them.").arg(key.left(60));
    if (gets)
        return {};
    if (known)
        return known->check(value);
    if (is_set)
        return sample_set_problem(value);
    bool is_number = false;
    return value.toInt(&is_number) > 0 && is_number
               ? QString()
               : QStringLiteral("BV_cur_veh_id is the number of a vehicle: vehicles list tells them.");
}

command_result run_settings(const profile_context& context, const QStringList& words) {
    command_result result;
    const bool sets = words.first() == QLatin1String("set");
    if (sets) {
        result.problem = store(context, words.at(1), words.at(2));
        if (result.problem.isEmpty() && !context.core.defaults.synchronise())
            result.problem =
                QStringLiteral("The file %1 cannot be written: check its rights and the room on the disk.")
                    .arg(context.core.paths.settings_file);
    }
    const bool one = words.size() > 1;
    QJsonObject values;
    const QStringList keys = one ? QStringList{words.at(1)} : all_keys(context);
    for (const QString& key : keys) {
        const QJsonValue value = value_of(context, key);
        values.insert(key, value);
        if (!sets)
            result.text +=
                one ? as_text(value) + u'\n' : QStringLiteral("%1 = %2\n").arg(key, as_text(value));
    }
    result.json.insert(QStringLiteral("settings"), values);
    return result;
}
