#include "livedata/sample_set.h"

#include "obd/supported_pids.h"
#include "operations/operation_code.h"

namespace brivant {

namespace {

constexpr qsizetype most_pids = 128;
constexpr qsizetype longest_item = 16;
constexpr int rarest = 10'000;
constexpr int slow_rate = 10;
// Temperatures, levels, distances, times, counts, states of the car's build.
const QStringList slow_pids = QStringLiteral("01 05 0F 12 13 1C 1D 1E 1F 21 2F 30 31 33 3C 3D 3E 3F 41 46 4D "
                                             "4E 51 52 5B 5C 5F A6")
                                  .split(u' ');

void add_what_economy_needs(QStringList& set, const QString& ecu) {
    const auto item = [&ecu](const char* pid) { return QLatin1String(pid) + ecu; };
    if (!set.contains(item("0D")))
        set += item("0D");
    if (!set.contains(item("10")) && !set.contains(item("5E")))
        set += item("10");
}

} // namespace

QStringList set_of_mode(int mode) {
    switch (mode) {
    case op_fuel: return {QStringLiteral("E4"), QStringLiteral("0D"), QStringLiteral("10")};
    case op_boost:
        return {QStringLiteral("E5"), QStringLiteral("06"), QStringLiteral("08"), QStringLiteral("0A")};
    default: return {};
    }
}

QStringList stored_log_run_set(const user_defaults& defaults, mac_toolies& toolies, int vehicle_id) {
    const auto own = setting::sample_set.of_vehicle(vehicle_id);
    QStringList set = usable_items(defaults.value(own));
    if (!defaults.has(own)) {
        set = usable_items(defaults.value(setting::older_sample_set));
        if (!set.isEmpty())
            toolies.save_pids_2_sample_prefs(set);
    }
    if (set.isEmpty()) {
        set = own.first_value();
        toolies.save_pids_2_sample_prefs(set);
    }
    return set;
}

QStringList usable_items(const QStringList& items) {
    QStringList set;
    std::optional<QString> with_economy; // of this ECU
    for (const QString& text : items) {
        const std::optional<sample_item> entry = split_sample_item(text);
        if (!entry || text.size() > longest_item || set.size() >= most_pids)
            continue;
        const QString pid = entry->pid.toUpper();
        const QString item = pid + text.sliced(pid.size());
        if (!set.contains(item))
            set += item;
        if (pid == QLatin1String("E4"))
            with_economy = text.sliced(pid.size());
    }
    if (with_economy)
        add_what_economy_needs(set, *with_economy);
    return set;
}

int rate_of_pid(const QString& pid, const QStringList& wanted) {
    for (const QString& rate : wanted) {
        const int sweeps = rate.section(u'/', 1, 1).trimmed().toInt();
        if (rate.section(u'/', 0, 0).trimmed().toUpper() == pid && sweeps >= 1 && sweeps <= rarest)
            return sweeps;
    }
    return slow_pids.contains(pid) ? slow_rate : 1;
}

bool name_ecu(QStringList& items, const QString& header) {
    bool changed = false;
    for (QString& item : items) {
        if (item.contains(u'|'))
            continue;
        item += u'|' + header;
        changed = true;
    }
    return changed;
}

} // namespace brivant
