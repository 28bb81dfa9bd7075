#include "app/screen/link_report.h"

#include "obd/ecu_names.h"
#include "shell/known_adapter.h"

namespace brivant {

namespace {

constexpr qsizetype longest_name = 24;

QString far_end_of(const adapter_place& place, bool is_demo) {
    if (is_demo)
        return QStringLiteral("Demo car");
    switch (place.interface_kind()) {
    case interface_wifi: return QStringLiteral("Wi-Fi %1").arg(place.wifi_ip());
    case interface_simulated: return QStringLiteral("Stand-in adapter");
    default:
        return QStringLiteral("%1 %2")
            .arg(word_of_link(place.interface_kind()), place.device_called().left(longest_name))
            .trimmed();
    }
}

QString details_of(const adapter_facts& adapter, const car_state& car, const mac_toolies& toolies) {
    if (!adapter.adapter_ready())
        return QStringLiteral("The adapter is not initialised yet.");
    QStringList lines{QStringLiteral("Adapter: %1").arg(adapter.interface_description())};
    lines += QStringLiteral("Protocol: %1").arg(adapter.protocol_description());
    QStringList ecus;
    for (const obd_group& ecu : car.available_pids()) {
        const QString name = toolies.l_pull_ECU(ecu.header);
        ecus += name.isEmpty() ? ecu_label(ecu.header)
                               : QStringLiteral("%1 (%2)").arg(ecu_label(ecu.header), name);
    }
    lines += QStringLiteral("ECUs: %1")
                 .arg(ecus.isEmpty() ? QStringLiteral("none") : ecus.join(QStringLiteral(", ")));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

link_words report_link(const adapter_link& link, const car_state& car, const mac_toolies& toolies,
                       bool is_demo) {
    const adapter_place& place = link.place();
    const adapter_facts& adapter = link.adapter();
    link_words words;
    words.far_end = far_end_of(place, is_demo);
    if (link.is_connected()) {
        words.now = link_words::condition::open;
        words.protocol = adapter.adapter_ready() ? adapter.protocol_description() : QString();
        words.details = details_of(adapter, car, toolies);
        if (const QString start = link.start().sentence(); !start.isEmpty())
            words.details += u'\n' + start;
        return words;
    }
    const bool opening = link.is_opening();
    words.now = opening ? link_words::condition::opening : link_words::condition::closed;
    words.details =
        opening ? QStringLiteral("The link to the adapter is being opened: %1").arg(link.start().sentence())
                : QStringLiteral("The link is opened when you start an operation (F5).");
    if (place.interface_kind() == interface_wifi && !is_demo)
        words.details += QStringLiteral("\nAddress %1, port %2").arg(place.wifi_ip(), place.wifi_port());
    if (place.is_device() && !place.address().isEmpty())
        words.details += QStringLiteral("\n%1, address %2").arg(place.device_called(), place.address());
    return words;
}

} // namespace brivant
