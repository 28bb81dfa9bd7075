#include "base/console_log.h"
#include "link/adapter_link.h"

namespace brivant {

// What the link does when it is lost.

namespace {
constexpr int return_after_reset_ms = 1000;
constexpr int first_try_with_advice = 3;
constexpr std::int64_t longest_silence_us = 20'000'000;
} // namespace

void adapter_link::tell_loss(const link_lost& loss) {
    if (controller)
        controller->handle_link_loss(loss);
    else
        left_by_loss(loss);
}

void adapter_link::reopen(const QString& status) {
    close_link();
    if (!status.isEmpty())
        l_set_status_msg(status);
    again.next_try();
}

void adapter_link::open_anew() {
    close_link();
    l_set_status_msg(QStringLiteral("The adapter is gone. The link is opened anew"));
    if (openInterfaceConnection())
        l_work_current_task(QString());
}

bool adapter_link::may_be_gone() const {
    return is_connected() && far_end.interface_kind() != interface_simulated &&
           clock.microseconds() - traffic.moments().last_byte > longest_silence_us;
}

void adapter_link::computer_woke() {
    again.hurry();
    if (is_connected())
        tell_loss({.status = QStringLiteral("The computer was asleep: the link to the adapter is gone")});
}

void adapter_link::left_by_loss(const link_lost& loss) {
    close_link();
    l_leave_cur_op_gracefully(loss.status_stays ? QStringLiteral("") : loss.status);
    if (loss.status_stays)
        l_set_status_msg(loss.status);
    if (!loss.message.isEmpty())
        pop_a_messy(loss.message);
}

// Its supply dipped, as when the engine is started: echo is on again and headers are off.
void adapter_link::adapter_started_anew() {
    console_log(QStringLiteral("The adapter has started anew"));
    facts.headers = false;
    set_up_next_time(true);
}

// Some adapters reset their link together with themselves: they are set up without a reset from then on.
bool adapter_link::fell_at_reset() {
    const bool at_reset = reset_under_way && traffic.is_in_flight() &&
                          traffic.current_command().why == sent_command::purpose::sets_up &&
                          current_command().startsWith(QLatin1String("AT Z"));
    if (!at_reset || !quirks.link_fell_at_reset())
        return false;
    close_link();
    l_set_status_msg(
        QStringLiteral("This adapter closes its connection when it is reset. It is opened again, and "
                       "set up without a reset."));
    reopening = clock.one_shot(return_after_reset_ms, [this] {
        reopening.reset();
        if (!far_end.is_device())
            return void(openTCP_socky());
        task_waits = true;
        is_coming_back = far_end.interface_kind() != interface_bluetooth;
        open_channel();
    });
    if (controller)
        controller->handle_link_loss({.at_reset = true});
    Q_EMIT condition_changed();
    return true;
}

// An adapter that hangs is as dead on a port that is opened anew.
void adapter_link::tell_pause(int seconds, int attempt) {
    QString text = QStringLiteral("Connection lost. Trying again in %1 s (try %2)").arg(seconds).arg(attempt);
    if (attempt >= first_try_with_advice && far_end.interface_kind() == interface_serial)
        text += QStringLiteral(". If the adapter is plugged in, unplug it and plug it in again");
    l_set_status_msg(text);
    Q_EMIT condition_changed();
}

void adapter_link::open_again(int attempt) {
    l_set_status_msg(QStringLiteral("Connection lost. Trying again now (try %1)").arg(attempt));
    close_link(); // the try before may still be opening
    tcpConnectReady = false;
    task_waits = true;
    steps.begin(far_end.is_device() && far_end.interface_kind() != interface_serial);
    link->open();
    Q_EMIT condition_changed();
}

} // namespace brivant
