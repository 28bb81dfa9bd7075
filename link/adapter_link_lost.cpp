#include "base/console_log.h"
#include "link/adapter_link.h"

// What the link does when it is lost.

namespace {
constexpr int return_after_reset_ms = 1000;
} // namespace

void adapter_link::link_lost(const QString& status, const QString& what_to_check) {
    const bool was_working = traffic.is_in_flight();
    const auto then = controller ? controller->on_link_lost() : task_controller::link_loss::ends;
    close_link();
    if (then == task_controller::link_loss::goes_on) {
        l_set_status_msg(status);
        return again.next_try();
    }
    const bool is_bluetooth = state.interface_kind == interface_bluetooth;
    l_leave_cur_op_gracefully(is_bluetooth ? status : QStringLiteral(""));
    if (!is_bluetooth)
        l_set_status_msg(status);
    if (was_working)
        pop_a_messy(
            QStringLiteral("The adapter closed the connection before it had answered. Check that it has "
                           "power and %1, then start again.")
                .arg(what_to_check));
    if (then == task_controller::link_loss::ends_reopens)
        again.next_try();
}

void adapter_link::set_up_anew(const QString& status_when_left) {
    if (controller && controller->on_link_lost() == task_controller::link_loss::goes_on) {
        close_link();
        again.next_try();
    } else {
        l_leave_cur_op_gracefully(status_when_left);
        disconnect();
    }
}

// Its supply dipped, as when the engine is started: echo is on again and headers are off.
void adapter_link::adapter_started_anew() {
    console_log(QStringLiteral("The adapter has started anew"));
    state.adapter_ready = false;
    state.adapter_known = false;
    state.headers_shown = false;
    far_end_changed();
}

// Some adapters reset their link together with themselves: they are set up without a reset from then on.
bool adapter_link::fell_at_reset() {
    const bool at_reset = reset_under_way && traffic.is_in_flight() && state.cur_task == op_initialise &&
                          current_command().startsWith(QLatin1String("AT Z"));
    if (!at_reset || !quirks.link_fell_at_reset())
        return false;
    close_link();
    state.cur_step = 0;
    l_set_status_msg(
        QStringLiteral("This adapter closes its connection when it is reset. It is opened again, and "
                       "set up without a reset."));
    reopening = clock.one_shot(return_after_reset_ms, [this] {
        reopening.reset();
        if (state.interface_kind != interface_bluetooth)
            return void(openTCP_socky());
        task_waits = true;
        open_channel();
    });
    Q_EMIT condition_changed();
    return true;
}

void adapter_link::tell_pause(int seconds, int attempt) {
    l_set_status_msg(
        QStringLiteral("Connection lost. Trying again in %1 s (try %2)").arg(seconds).arg(attempt));
    Q_EMIT condition_changed();
}

void adapter_link::open_again(int attempt) {
    l_set_status_msg(QStringLiteral("Connection lost. Trying again now (try %1)").arg(attempt));
    close_link(); // the try before may still be opening
    state.tcpConnectReady = false;
    task_waits = true;
    link->open();
    Q_EMIT condition_changed();
}

bool adapter_link::try_again_later() {
    if (!again.is_active())
        return false;
    close_link();
    again.next_try();
    return true;
}
