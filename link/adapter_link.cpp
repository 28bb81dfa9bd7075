#include "link/adapter_link.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "link/bluetooth_transport.h"
#include "link/le_transport.h"
#include "link/serial_transport.h"
#include "link/simulated_adapter.h"
#include "link/wifi_transport.h"

namespace brivant {

namespace {
constexpr int message_delay_ms = 500;
constexpr int reset_ms = 1000;
} // namespace

std::unique_ptr<transport> make_transport(const adapter_place& place) {
    switch (place.interface_kind()) {
    case interface_wifi: return std::make_unique<wifi_transport>(place);
    case interface_le: return std::make_unique<le_transport>(place);
    case interface_simulated: return std::make_unique<simulated_adapter>();
    case interface_serial: return std::make_unique<serial_transport>(place);
    default: return std::make_unique<bluetooth_transport>(place);
    }
}

adapter_link::adapter_link(adapter_place& its_place, adapter_facts& its_facts, timers& time_source,
                           screen& its_screen, transport_maker make_transport)
    : far_end(its_place), facts(its_facts), clock(time_source), view(its_screen),
      maker(std::move(make_transport)), traffic(its_place, its_facts, time_source, *this), quirks(its_place),
      steps(time_source), watchdog(
                              time_source, [this](int tick, bool quiet) { still_waiting(tick, quiet); },
                              [this] { never_opened(); }),
      again(
          time_source, [this](int seconds, int attempt) { tell_pause(seconds, attempt); },
          [this](int attempt) { open_again(attempt); }) {}

adapter_link::~adapter_link() {
    if (link)
        link->close();
}

void adapter_link::set_controller(task_controller* next) {
    again.stop(); // first: the operation does not go on
    if (controller)
        controller->leave_cur_op_gracefully(QStringLiteral(""));
    stop_opening();
    stop_timers();
    traffic.abandon();
    controller = next;
}

// --- opening and closing -----------------------------------------------------------------------------------

void adapter_link::make_sure_of_transport() {
    if (link && link_kind == far_end.interface_kind())
        return;
    if (link)
        disconnect();
    link = maker(far_end);
    link_kind = far_end.interface_kind();
    connect(link.get(), &transport::opened, this, &adapter_link::link_opened);
    connect(link.get(), &transport::radio_ready, this, [this] {
        steps.reached(start_step::radio);
        Q_EMIT start_went_on();
    });
    connect(link.get(), &transport::failed, this, &adapter_link::link_failed);
    connect(link.get(), &transport::closed, this, &adapter_link::link_closed);
    connect(link.get(), &transport::read_failed, this, [this](const QString& reason) {
        l_set_status_msg(fill(QStringLiteral("Failed receiving data [ %@ ]"), {reason}));
    });
    connect(link.get(), &transport::OBDevent, this,
            [this](const QString& text) { traffic.handleOBDRcvdNotification(text); });
}

void adapter_link::forget_adapter() {
    traffic.reset();
    facts.ready = false;
    facts.known = false;
    facts.headers = false;
    facts.protocol = -1;
}

void adapter_link::disconnect() {
    again.stop();
    close_link();
}

void adapter_link::close_link() {
    stop_timers();
    asked.reset();
    search.reset();
    if (link)
        link->close();
    steps.broke_off();
    is_coming_back = false;
    forget_adapter();
    Q_EMIT condition_changed();
}

void adapter_link::link_closed() {
    if (fell_at_reset())
        return;
    const bool is_device = far_end.is_device(), is_usb = far_end.interface_kind() == interface_serial;
    link_lost loss{.status = QStringLiteral("Disconnected"), .status_stays = !is_device};
    if (is_device)
        loss.status = far_end.interface_kind() == interface_bluetooth
                          ? QStringLiteral("Connection to BT lost")
                          : QStringLiteral("Connection to %1 lost").arg(far_end.device_called());
    if (traffic.is_in_flight())
        loss.message =
            QStringLiteral("The adapter closed the connection%1. Check that it has power and %2, then start "
                           "again.")
                .arg(facts.known ? QStringLiteral(" in the middle of the work")
                                 : QStringLiteral(" before it had answered"),
                     is_usb      ? QStringLiteral("is still plugged in")
                     : is_device ? QStringLiteral("is near this computer")
                                 : QStringLiteral("that this computer is still in its network"));
    tell_loss(loss);
}

// --- commands and replies ----------------------------------------------------------------------------------

void adapter_link::sendOBDcmd_n(const QString& command, const QString& expectedReply, bool msg_has_hdr) {
    send(command_of(command, expectedReply, msg_has_hdr));
}

void adapter_link::send(const sent_command& command) {
    if (command.why != sent_command::purpose::typed && quirks.falls_silent_at(command.text))
        traffic.take_as_unknown(command);
    else
        traffic.send(command);
}

void adapter_link::transmit(const QByteArray& command) {
    if (traffic.current_command().why == sent_command::purpose::typed) {
        set_up_next_time(true); // it may have changed anything
    }
    if (command.startsWith("AT Z"))
        reset_under_way = clock.one_shot(reset_ms, [this] { reset_under_way.reset(); });
    if (link)
        link->write(command);
}

void adapter_link::adapter_answered() {
    facts.known = true;
    steps.reached(start_step::adapter);
    Q_EMIT start_went_on();
}

void adapter_link::protocol_told(int number) {
    facts.protocol = number;
    if (number < 0)
        return;
    steps.reached(start_step::protocol);
    Q_EMIT start_went_on();
}

void adapter_link::adapter_is_set_up() {
    facts.ready = true;
    steps.reached(start_step::ecus);
    Q_EMIT adapter_set_up();
    Q_EMIT condition_changed();
}

void adapter_link::set_up_next_time(bool from_a_reset) {
    facts.ready = false;
    facts.known = facts.known && !from_a_reset;
    Q_EMIT condition_changed();
}

void adapter_link::changes_setting(const QString& undo) {
    if (!undo_commands.contains(undo))
        undo_commands += undo;
}

// A line end could make an adapter that has just finished carry out the command again.
void adapter_link::interrupt() {
    if (link)
        link->write(" ");
}

void adapter_link::piece_arrived(const QString& text) {
    if (tcpConnectReady && controller)
        controller->handle_piece(text);
}

void adapter_link::reply_arrived(const reply& what_came) {
    const QString& command = current_command();
    if (!what_came.is_none() && !quirks.falls_silent_at(command))
        quirks.answered(command);
    if (traffic.current_command().why != sent_command::purpose::sets_up && !what_came.is_none())
        again.stop(); // the new link holds
    if (command.startsWith(QLatin1String("AT H1")) && what_came.text().contains(QLatin1String("OK")))
        facts.headers = true;
    else if (command.startsWith(QLatin1String("AT H0")) && what_came.text().contains(QLatin1String("OK")))
        facts.headers = false;
    else if (command.startsWith(QLatin1String("AT Z")))
        facts.headers = false;
    reset_under_way.reset();
    if (tcpConnectReady && controller)
        controller->handleOBDRcvdMsg(what_came);
}

void adapter_link::command_unanswered() {
    view.beep();
    if (facts.known) // so it is alive, and did not answer this
        quirks.unanswered(current_command());
    tell_loss({.status = QStringLiteral("No answer came five times in a row: the link is closed")});
    if (!again.is_active()) // else the status tells, try after try
        late_message = clock.one_shot(message_delay_ms, [this] {
            view.show_message(QString(), localised(QStringLiteral("DLG_4_TIMEOUTS_CHECK")));
        });
}

// --- the current controller --------------------------------------------------------------------------------

void adapter_link::l_set_status_msg(const QString& status) {
    if (controller)
        controller->set_status_msg(status);
}

void adapter_link::l_set_toast_msg(const QString& toast) {
    if (controller)
        controller->handleOBDToast(toast);
}

void adapter_link::l_work_current_task(const QString& status) {
    tcpConnectReady = true;
    if (!status.isNull())
        l_set_status_msg(status);
    if (controller)
        controller->work_current_task(status);
}

void adapter_link::l_leave_cur_op_gracefully(const QString& status) {
    again.stop();
    task_waits = false;
    stop_timers();
    traffic.abandon();
    if (!status.isEmpty())
        l_set_status_msg(status);
    if (controller)
        controller->leave_cur_op_gracefully(status);
}

void adapter_link::stop_timers() {
    const bool was_opening = is_opening();
    traffic.stop_timer();
    watchdog.stop();
    first_task.reset();
    reset_under_way.reset();
    reopening.reset();
    if (was_opening && !is_opening())
        Q_EMIT condition_changed();
}

void adapter_link::pop_a_messy(const QString& text, const QString& title) {
    if (!again.is_active()) // else the status tells, try after try
        view.show_message(title, text);
}

} // namespace brivant
