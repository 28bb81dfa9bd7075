#include "base/console_log.h"
#include "base/string_table.h"
#include "link/adapter_link.h"
#include "link/bluetooth_service.h"

namespace brivant {

// What the link does for a device: which one, and its channel. Bluetooth has words of its own, and asks for
// another device where one does not answer; USB and Bluetooth LE adapters are chosen among the links.

void adapter_link::choose_bluetooth_device() {
    if (far_end.interface_kind() == interface_bluetooth)
        ask_for_device(QString(), QString());
}

bool adapter_link::openSerialPortProfile() {
    task_waits = true;
    if (is_connected())
        return true;
    if (asked)
        return false; // the person is choosing
    if (is_opening()) {
        if (!watchdog.is_running())
            watchdog.start(); // the operation before stopped it
        return false;
    }
    if (far_end.now().where.isEmpty())
        ask_for_device(QString(), QStringLiteral(""));
    else
        open_channel();
    return false; // the task starts when the channel opens
}

void adapter_link::ask_for_device(const QString& why, const QString& status_for_none) {
    asked = std::make_shared<int>();
    view.choose_device(why, [this, question = std::weak_ptr(asked), status_for_none](const QString& address,
                                                                                     const QString& name) {
        if (question.expired())
            return; // it has become pointless
        asked.reset();
        if (!address.isEmpty())
            return take_device(address, name);
        console_log(QStringLiteral("User has cancelled the device selection."));
        if (!status_for_none.isNull())
            l_leave_cur_op_gracefully(status_for_none);
        Q_EMIT condition_changed();
    });
}

void adapter_link::take_device(const QString& address, const QString& name) {
    const adapter_address chosen =
        adapter_address::of(address).value_or(adapter_address{.kind = interface_bluetooth, .where = address});
    if (is_connected() && chosen == far_end.now())
        return; // as it is
    const bool for_an_operation = task_waits && !is_connected();
    if (!for_an_operation)
        l_leave_cur_op_gracefully(QStringLiteral("")); // it runs over another device
    disconnect();
    task_waits = for_an_operation;
    far_end.choose(chosen, name);
    if (chosen.kind != interface_bluetooth)
        Q_EMIT place_chosen();
    open_channel();
}

void adapter_link::open_channel() {
    make_sure_of_transport();
    tcpConnectReady = false;
    late_toast_clearing.reset();
    forget_adapter();
    const QString connecting = fill(QStringLiteral("Connecting to:%@"), {far_end.device_called()});
    l_set_status_msg(connecting);
    l_set_toast_msg(
        far_end.interface_kind() == interface_bluetooth
            ? fill(QStringLiteral("%@\n\nMake sure you are connecting to your\n OBD Bluetooth interface "),
                   {connecting})
            : connecting);
    watchdog.start();
    steps.begin(far_end.interface_kind() != interface_serial);
    link->open();
    Q_EMIT condition_changed();
}

void adapter_link::channel_opened() {
    const QString name = link->far_end_name(); // of a device that was given by its address
    if (far_end.interface_kind() == interface_bluetooth) {
        if (!name.isEmpty())
            far_end.take_device(far_end.bt_address(), name);
        l_set_status_msg(QStringLiteral("BT Connected"));
        Q_EMIT device_taken(); // one that never answered is not worth remembering
        l_set_status_msg(QStringLiteral("BT Connected!!"));
    } else {
        if (!name.isEmpty())
            far_end.take_name(name);
        if (link->speed() != 0)
            far_end.take_speed(link->speed());
        l_set_status_msg(QStringLiteral("Connected to %1").arg(far_end.device_called()));
    }
    l_set_toast_msg(QStringLiteral(""));
    is_coming_back = false;
    tcpConnectReady = true;
    if (std::exchange(task_waits, false))
        l_work_current_task(QString()); // no status: the one above stays
}

// Of Bluetooth, another device may answer: the operation goes on with the one that is chosen, and is left
// when none is.
void adapter_link::channel_refused(const QString& reason, const QString& status_for_none) {
    if (is_coming_back && watchdog.is_running())
        return; // it was reset: the watchdog tries again
    disconnect();
    if (far_end.interface_kind() != interface_bluetooth) {
        l_leave_cur_op_gracefully(reason);
        return view.show_message(QString(), reason);
    }
    l_set_toast_msg(QStringLiteral(""));
    l_set_status_msg(reason);
    ask_for_device(reason, status_for_none);
}

} // namespace brivant
