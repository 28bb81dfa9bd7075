#include "app/livedata/words_before_values.h"

#include "obd/supported_pids.h"

namespace brivant {

namespace {

// What is said before the first run of a mode.
QString invitation(int mode) {
    switch (mode) {
    case op_fuel:
        return QStringLiteral(
            "Press Start (F5) with the engine running: fuel economy from speed and air flow.");
    case op_boost:
        return QStringLiteral(
            "Press Start (F5) with the engine running: boost from the pressure in the intake "
            "manifold, with fuel trims and fuel pressure.");
    case op_o2_layout:
        return QStringLiteral(
            "Press Start (F5) with the engine warm and running: the oxygen sensors in the exhaust, "
            "with their voltages.");
    default:
        return QStringLiteral(
            "Press Start (F5) with the ignition on. Under Values you choose what the car is asked.");
    }
}

// What the mode needs and the car does not report.
QString missing_pids(const view_context& context, const live_results& results) {
    if (results.mode != op_fuel && results.mode != op_boost)
        return {};
    QStringList missing;
    for (const QString& item : std::as_const(results.pid_logitems_list)) {
        const auto entry = split_sample_item(item);
        if (!entry || entry->pid == QLatin1String("E4"))
            continue;
        const QString pid = requested_pid(entry->pid);
        if (!isPID_in_avail_pid_list(context.core.car.available_pids(), {pid, entry->header},
                                     context.core.adapter.cur_protocol()))
            missing +=
                QStringLiteral("%1 (%2)").arg(context.core.toolies.get_pid_name_with_pid(pid).trimmed(), pid);
    }
    return missing.join(QStringLiteral(", "));
}

} // namespace

QString words_before_values(const view_context& context, const actions& controller, bool ran) {
    if (controller.is_running())
        return context.core.adapter.adapter_ready()
                   ? QStringLiteral("The car is being asked ...")
                   : QStringLiteral(
                         "The link is opened and the adapter set up. This can take half a minute ...");
    if (!ran)
        return invitation(controller.results.mode);
    const QString missing = missing_pids(context, controller.results);
    if (!missing.isEmpty())
        return QStringLiteral(
                   "This mode needs what the car does not report: %1. Log Run shows the values that it "
                   "has.")
            .arg(missing);
    return QStringLiteral(
        "The run ended before the first value came. Turn the ignition on and press Start (F5).");
}

} // namespace brivant
