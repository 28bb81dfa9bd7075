#include "tests/support/adapter_bench.h"

#include "base/console_log.h"
#include "persistence/vehicles.h"

namespace brivant {

adapter_bench::adapter_bench() {
    silence_console_log();
    place.choose(interface_wifi);
    profile.db.init_DB();
    if (const auto first = vehicle_or_first(profile.db, -1))
        state.make_current(first->id, {});

    actions["stored"] = [this](const QString& ecus) { toolies.save_pids_available(ecus_of(ecus)); };
    actions["samples"] = [this](const QString& pids) { toolies.save_pids_2_sample_prefs(pids.split(' ')); };
    facts["pids"] = [this] { return text_of(state.available_pids()); };
    facts["stored"] = [this] { return text_of(toolies.grab_pids_available()); };
    facts["samples"] = [this] {
        return profile.defaults.value(setting::sample_set.of_vehicle(state.cur_veh_id())).join(' ');
    };
    facts["protocol"] = [this] { return QString::number(found_out.protocol); };
    facts["link"] = [this] { return QString(link.is_connected() ? "open" : "closed"); };
    facts["ready"] = [this] { return QString(found_out.ready ? "yes" : "no"); };
    facts["busy"] = [this] { return QString(view.is_busy ? "yes" : "no"); };
    facts["timers"] = [this] { return QString::number(clock.running()); };
}

QString text_of(const obd_groups& ecus) {
    QStringList texts;
    for (const obd_group& ecu : ecus)
        texts += (QStringList(ecu.header) + ecu.pidSet).join(' ');
    return texts.join(", ");
}

obd_groups ecus_of(const QString& text) {
    obd_groups ecus;
    for (const QString& ecu : text.split(", ")) {
        QStringList words = ecu.split(' ');
        const QString header = words.takeFirst();
        ecus.append({header, words});
    }
    return ecus;
}

} // namespace brivant
