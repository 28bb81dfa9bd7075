#include "base/string_table.h"
#include "link/adapter_link.h"

namespace brivant {

// How the link is opened.

namespace {
constexpr int first_task_delay_ms = 800;
constexpr int toast_clearing_ms = 1700;
constexpr int car_running_hint_tick = 15;
} // namespace

bool adapter_link::openInterfaceConnection() {
    again.stop();
    if (search)
        return false; // the operation starts when one has answered
    if (!is_connected() && !is_opening() && !asked && lead_before_opening) {
        if (const auto candidates = lead_before_opening(); !candidates.isEmpty())
            return look_for_one(candidates);
    }
    return open_place();
}

bool adapter_link::open_place() {
    make_sure_of_transport();
    return far_end.is_device() ? openSerialPortProfile() : openTCP_socky();
}

bool adapter_link::look_for_one(const QList<adapter_search::candidate>& candidates) {
    search = std::make_unique<adapter_search>(maker, clock);
    connect(search.get(), &adapter_search::answered, this, &adapter_link::found_one);
    task_waits = true;
    QStringList names;
    for (const adapter_search::candidate& one : candidates) {
        names += one.name.isEmpty() ? one.where.where : one.name;
        search->add(one);
    }
    l_set_status_msg(
        QStringLiteral("Looking for one of your adapters: %1").arg(names.join(QStringLiteral(", "))));
    Q_EMIT condition_changed();
    return false;
}

void adapter_link::found_one(const probed_adapter& which) {
    if (!which.is_adapter() && search->is_running())
        return;
    adapter_search* over = search.release();
    over->disconnect(this);
    over->stop();
    over->deleteLater(); // it is talking
    if (which.is_adapter()) {
        far_end.choose(which.where, which.name);
        if (open_place())
            l_work_current_task(QString());
        return;
    }
    const QString none = QStringLiteral("None of your adapters answers. See that one is plugged in and lit.");
    l_leave_cur_op_gracefully(none);
    view.show_message(QString(), none);
    Q_EMIT condition_changed();
}

bool adapter_link::openTCP_socky() {
    if (is_connected())
        return first_task == nullptr; // else the task starts in a moment by itself
    if (is_opening()) {
        if (!watchdog.is_running())
            watchdog.start(); // the operation before stopped it
        return false;
    }
    tcpConnectReady = false;
    late_toast_clearing.reset();
    forget_adapter();
    steps.begin(false);
    watchdog.start();
    if (far_end.interface_kind() == interface_wifi) {
        const QString trying = fill(QStringLiteral("Trying: %@:%d "),
                                    {far_end.wifi_ip(), QString::number(far_end.wifi_port().toUShort())});
        l_set_status_msg(trying);
        l_set_toast_msg(
            fill(QStringLiteral("%@\n\nMake sure you connected to your\n OBD WiFi interface beforehand "),
                 {trying}));
    }
    link->open();
    Q_EMIT condition_changed();
    return is_connected() && first_task == nullptr;
}

void adapter_link::link_opened() {
    quirks.link_opened();
    steps.reached(start_step::link);
    watchdog.stop();
    again.opened();
    forget_adapter();
    if (far_end.interface_kind() == interface_simulated) {
        tcpConnectReady = true;
    } else if (far_end.is_device()) {
        channel_opened();
    } else {
        l_set_status_msg(QStringLiteral("TCP Connected!! ... Sending intial request"));
        l_set_toast_msg(QStringLiteral(""));
        first_task = clock.one_shot(first_task_delay_ms, [this] {
            first_task.reset();
            if (is_connected())
                l_work_current_task(QStringLiteral("Connected!  Querying ..."));
        });
    }
    Q_EMIT condition_changed();
}

void adapter_link::link_failed(const QString& reason) {
    if (again.is_active()) {
        if (!is_connected()) // else closed() follows
            again.next_try();
        return;
    }
    if (far_end.is_device())
        return channel_refused(reason, QStringLiteral("Connection to BT lost"));
    l_set_status_msg(fill(QStringLiteral("Couldn't connect...Please Check\n\n%@"), {reason}));
    Q_EMIT condition_changed();
}

void adapter_link::stop_opening() {
    const bool is_coming = is_opening() || asked;
    task_waits = false;
    again.stop();
    if (is_coming)
        disconnect();
}

void adapter_link::still_waiting(int tick, bool quiet) {
    link->open(); // where it was refused: the adapter may be starting up
    if (quiet || is_connected())
        return;
    const QString seconds = QString::number(tick), of = QString::number(connect_watchdog::last_tick);
    QString text;
    if (far_end.interface_kind() == interface_bluetooth)
        text = fill(localised(QStringLiteral("TOAST_BT_NOT_RESP_RETRY")),
                    {far_end.last_BT_Device(), seconds, of});
    else if (far_end.is_device())
        text =
            QStringLiteral("%1 has not answered yet (%2 of %3 s)").arg(far_end.device_called(), seconds, of);
    else
        text = fill(localised(QStringLiteral("TOAST_WIFI_NOT_RESP_RETRY")),
                    {far_end.wifi_ip(), far_end.wifi_port(), seconds, of});
    if (tick >= car_running_hint_tick)
        text += QStringLiteral("\n\n") + localised(QStringLiteral("TOAST_SOME_VEH_RUNNG"));
    l_set_toast_msg(text);
    l_set_status_msg(text);
}

void adapter_link::never_opened() {
    view.play_sound(sound_alert);
    disconnect();
    const bool is_bluetooth = far_end.interface_kind() == interface_bluetooth;
    if (!is_bluetooth)
        l_leave_cur_op_gracefully(QStringLiteral("")); // first: it hides the toast
    QString text = localised(QStringLiteral("TOAST_WIFI_CONN_FAILED"));
    if (is_bluetooth)
        text = fill(localised(QStringLiteral("TOAST_BT_CONN_FAILED")), {far_end.last_BT_Device()});
    else if (far_end.is_device())
        text =
            QStringLiteral("%1 does not answer. See that it is plugged in and lit, and that no other program "
                           "or phone uses it.")
                .arg(far_end.device_called());
    l_set_toast_msg(text);
    l_set_status_msg(text);
    if (is_bluetooth)
        ask_for_device(
            QStringLiteral("%1 did not answer. Check that its lamp is lit and that it is paired, or "
                           "choose another device.")
                .arg(far_end.last_BT_Device()),
            QStringLiteral(""));
    late_toast_clearing = clock.one_shot(toast_clearing_ms, [this] { l_set_toast_msg(QStringLiteral("")); });
}

} // namespace brivant
