#include "link/adapter_link.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "link/simulated_adapter.h"
#include "link/wifi_transport.h"

namespace {
constexpr int first_task_delay_ms = 800;
constexpr int message_delay_ms = 500;
constexpr int toast_clearing_ms = 1700;
constexpr int car_running_hint_tick = 15;
} // namespace

std::unique_ptr<transport> make_transport(const process_state& process) {
    switch (process.interface_kind) {
    case interface_wifi: return std::make_unique<wifi_transport>(process);
    case interface_simulated: return std::make_unique<simulated_adapter>();
    default: return nullptr;
    }
}

adapter_link::adapter_link(process_state& process, timers& time_source, screen& its_screen,
                           transport_maker make_transport)
    : state(process), clock(time_source), view(its_screen), maker(std::move(make_transport)),
      traffic(process, time_source, *this),
      watchdog(
          time_source, [this](int tick, bool quiet) { still_waiting(tick, quiet); }, [this] { never_opened(); }) {}

adapter_link::~adapter_link() {
    if (link)
        link->close();
}

void adapter_link::set_controller(task_controller* next) {
    if (controller)
        controller->leave_cur_op_gracefully(QStringLiteral(""));
    stop_opening();
    stop_timers();
    traffic.abandon();
    controller = next;
}

// --- opening and closing -------------------------------------------------------------------------------------

void adapter_link::make_sure_of_transport() {
    if (link && link_kind == state.interface_kind)
        return;
    if (link)
        disconnect();
    link = maker(state);
    link_kind = state.interface_kind;
    if (!link)
        return;
    connect(link.get(), &transport::opened, this, &adapter_link::link_opened);
    connect(link.get(), &transport::failed, this, &adapter_link::link_failed);
    connect(link.get(), &transport::closed, this, &adapter_link::link_closed);
    connect(link.get(), &transport::read_failed, this, [this](const QString& reason) {
        l_set_status_msg(fill(QStringLiteral("Failed receiving data [ %@ ]"), {reason}));
    });
    connect(link.get(), &transport::OBDevent, this,
            [this](const QString& text) { traffic.handleOBDRcvdNotification(text); });
}

bool adapter_link::openInterfaceConnection() {
    make_sure_of_transport();
    if (!link) {
        l_leave_cur_op_gracefully(QStringLiteral("Bluetooth is not available yet: choose Wi-Fi in the preferences"));
        return false;
    }
    return openTCP_socky();
}

bool adapter_link::openTCP_socky() {
    if (is_connected())
        return first_task == nullptr; // else the task starts in a moment by itself
    if (is_opening() || watchdog.is_running()) {
        if (!watchdog.is_running())
            watchdog.start(); // the operation before stopped it
        return false;
    }
    state.tcpConnectReady = false;
    late_toast_clearing.reset();
    forget_adapter();
    watchdog.start();
    if (state.interface_kind == interface_wifi) {
        const QString trying = fill(QStringLiteral("Trying: %@:%d "), {state.wifi_ip, state.wifi_port});
        l_set_status_msg(trying);
        l_set_toast_msg(fill(QStringLiteral("%@\n\nMake sure you connected to your\n OBD WiFi interface beforehand "),
                             {trying}));
    }
    link->open();
    Q_EMIT condition_changed();
    return is_connected() && first_task == nullptr;
}

void adapter_link::forget_adapter() {
    traffic.reset();
    state.adapter_ready = false;
    state.adapter_known = false;
    state.headers_shown = false;
    state.cur_protocol = -1;
}

void adapter_link::disconnect() {
    stop_timers();
    if (link)
        link->close();
    forget_adapter();
    Q_EMIT condition_changed();
}

void adapter_link::link_opened() {
    watchdog.stop();
    forget_adapter();
    if (state.interface_kind == interface_simulated) {
        state.tcpConnectReady = true;
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
    l_set_status_msg(fill(QStringLiteral("Couldn't connect...Please Check\n\n%@"), {reason}));
    Q_EMIT condition_changed();
}

void adapter_link::link_closed() {
    const bool was_working = traffic.is_in_flight();
    disconnect();
    l_leave_cur_op_gracefully(QStringLiteral(""));
    l_set_status_msg(QStringLiteral("Disconnected"));
    if (was_working)
        pop_a_messy(QStringLiteral("The adapter closed the connection before it had answered. Check that it has "
                                   "power and that this computer is still in its network, then start again."));
}

void adapter_link::stop_opening() {
    if (is_opening() || watchdog.is_running())
        disconnect();
}

void adapter_link::still_waiting(int tick, bool quiet) {
    if (!is_opening())
        link->open(); // refused: the adapter may be starting up
    if (quiet || is_connected())
        return;
    QString text = fill(localised(QStringLiteral("TOAST_WIFI_NOT_RESP_RETRY")),
                        {state.wifi_ip, state.wifi_port, QString::number(tick),
                         QString::number(connect_watchdog::last_tick)});
    if (tick >= car_running_hint_tick)
        text += QStringLiteral("\n\n") + localised(QStringLiteral("TOAST_SOME_VEH_RUNNG"));
    l_set_toast_msg(text);
    l_set_status_msg(text);
}

void adapter_link::never_opened() {
    view.play_sound(sound_alert);
    disconnect();
    l_leave_cur_op_gracefully(QStringLiteral("")); // first: it hides the toast
    const QString text = localised(QStringLiteral("TOAST_WIFI_CONN_FAILED"));
    l_set_toast_msg(text);
    l_set_status_msg(text);
    late_toast_clearing = clock.one_shot(toast_clearing_ms, [this] { l_set_toast_msg(QStringLiteral("")); });
}

// --- commands and replies ------------------------------------------------------------------------------------

void adapter_link::sendOBDcmd_n(const QString& command, const QString& expectedReply, bool msg_has_hdr) {
    traffic.sendOBDcmd_n(command, expectedReply, msg_has_hdr);
}

void adapter_link::sendOBDcmd(const QString& command) {
    traffic.sendOBDcmd(command);
}

void adapter_link::transmit(const QByteArray& command) {
    if (link)
        link->write(command);
}

void adapter_link::reply_arrived(const QString& reply) {
    const QString& command = traffic.current_command();
    if (command.startsWith(QLatin1String("AT H1")) && reply.contains(QLatin1String("OK")))
        state.headers_shown = true;
    else if (command.startsWith(QLatin1String("AT H0")) && reply.contains(QLatin1String("OK")))
        state.headers_shown = false;
    else if (command.startsWith(QLatin1String("AT Z")))
        state.headers_shown = false;
    if (state.tcpConnectReady && controller)
        controller->handleOBDRcvdMsg(reply);
}

void adapter_link::redo_current_step() {
    redo = true;
    l_work_current_task(QString());
    redo = false;
}

void adapter_link::command_unanswered() {
    view.beep();
    l_leave_cur_op_gracefully(QStringLiteral(""));
    disconnect();
    late_message = clock.one_shot(
        message_delay_ms, [this] { pop_a_messy(localised(QStringLiteral("DLG_4_TIMEOUTS_CHECK"))); });
}

// --- the current controller ----------------------------------------------------------------------------------

void adapter_link::l_set_status_msg(const QString& status) {
    if (controller)
        controller->set_status_msg(status);
}

void adapter_link::l_set_toast_msg(const QString& toast) {
    if (controller)
        controller->handleOBDToast(toast);
}

void adapter_link::l_work_current_task(const QString& status) {
    state.tcpConnectReady = true;
    if (!status.isNull())
        l_set_status_msg(status);
    if (controller)
        controller->work_current_task(status);
}

void adapter_link::l_leave_cur_op_gracefully(const QString& status) {
    stop_timers();
    traffic.abandon();
    if (!status.isEmpty())
        l_set_status_msg(status);
    if (controller)
        controller->leave_cur_op_gracefully(status);
}

void adapter_link::stop_timers() {
    traffic.stop_timer();
    watchdog.stop();
    first_task.reset();
}

void adapter_link::pop_a_messy(const QString& text) {
    view.show_message(QString(), text);
}
