#include "link/gatt_channel.h"

#include "base/console_log.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <utility>

namespace brivant {

namespace {

constexpr int search_look_ms = 500;

QVariantMap with_type(const char* word) {
    return {{QStringLiteral("type"), QString::fromLatin1(word)}};
}

bool is_error(const QDBusError& error, const char* name) {
    return error.name() == QLatin1String("org.bluez.Error.") + QLatin1String(name);
}

} // namespace

gatt_channel::gatt_channel(const QString& its_address, const QString& its_name, int patience_ms)
    : address(its_address), name(its_name) {
    patience.setSingleShot(true);
    patience.setInterval(patience_ms);
    next_look.setSingleShot(true);
    next_look.setInterval(search_look_ms);
    connect(&patience, &QTimer::timeout, this, &gatt_channel::out_of_patience);
    connect(&next_look, &QTimer::timeout, this, &gatt_channel::look);
}

void gatt_channel::begin(step next) {
    now = next;
    if (next == step::open || next == step::over)
        patience.stop();
    else
        patience.start();
}

// What comes after the end is nobody's.
template <typename function>
void gatt_channel::when(const QDBusPendingCall& call, function act) {
    when_answered(this, call, [this, act](const QDBusPendingCall& answered) {
        if (now != step::over)
            act(answered);
    });
}

// --- to the device -----------------------------------------------------------------------------------------

void gatt_channel::open(const std::optional<QDBusPendingCall>& before) {
    begin(step::looking);
    if (before)
        when(*before, [this](const QDBusPendingCall&) { look(); });
    else
        QMetaObject::invokeMethod(this, &gatt_channel::look, Qt::QueuedConnection);
}

void gatt_channel::look() {
    if (now != step::looking && now != step::searching)
        return;
    when(bluez::ask_for_objects(), [this](const QDBusPendingCall& answered) {
        const QDBusPendingReply<bluez_objects> reply = answered;
        if (now != step::looking && now != step::searching)
            return;
        if (reply.isError())
            return fail(why_unusable(bluez::condition_after(reply.error())));
        const bluetooth_surroundings around = bluez::radio_of(reply.value());
        if (around.condition != bluetooth_condition::ready)
            return fail(why_unusable(around.condition));
        if (now == step::looking)
            Q_EMIT radio_ready();
        radio = around.adapter;
        bluez_owner = reply.reply().service();
        if (find_device(reply.value()))
            connect_device();
        else if (now == step::searching)
            next_look.start();
        else
            search();
    });
}

bool gatt_channel::find_device(const bluez_objects& objects) {
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        const QVariantMap properties = bluez::device_properties(*object, radio);
        if (properties.value(QStringLiteral("Address")).toString().compare(address, Qt::CaseInsensitive) != 0)
            continue;
        device = object.key().path();
        name = bluez::name_of(properties);
        paired = properties.value(QStringLiteral("Paired")).toBool();
        was_connected = properties.value(QStringLiteral("Connected")).toBool();
        return true;
    }
    return false;
}

void gatt_channel::search() {
    begin(step::searching);
    is_searching = true;
    service.start_discovery(
        radio,
        [this](const QString& problem) {
            if (now == step::searching && !problem.isEmpty())
                fail(QStringLiteral("%1 is not known here, and the search for it could not be started (%2).")
                         .arg(name, problem));
        },
        bluetooth_service::kind_of_device::le);
    next_look.start();
}

// Connecting is slow while the radio looks for devices.
void gatt_channel::stop_search() {
    next_look.stop();
    if (std::exchange(is_searching, false))
        service.stop_discovery(radio);
}

void gatt_channel::connect_device() {
    stop_search();
    begin(step::connecting);
    follow(radio);
    follow(device);
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect(bluez_owner, QStringLiteral("/"), bluez::object_manager, QStringLiteral("InterfacesRemoved"),
                this, SLOT(take_removal(QDBusMessage)));
    auto* watcher = new QDBusServiceWatcher(QStringLiteral("org.bluez"), bus,
                                            QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &gatt_channel::lose);
    when(bluez::ask(device, bluez::device_interface, QStringLiteral("Connect"), {}, patience.interval()),
         [this](const QDBusPendingCall& answered) {
             if (answered.isError() && !is_error(answered.error(), "AlreadyConnected"))
                 return fail(why_refused(answered.error()));
             begin(step::resolving);
             look_for_port();
         });
}

void gatt_channel::look_for_port() {
    when(bluez::ask_for_objects(), [this](const QDBusPendingCall& answered) {
        const QDBusPendingReply<bluez_objects> reply = answered;
        if (now != step::resolving)
            return;
        if (reply.isError())
            return fail(why_unusable(bluez::condition_after(reply.error())));
        take_services(reply.value());
    });
}

// While the services are not known, the change that tells so brings us here again.
void gatt_channel::take_services(const bluez_objects& objects) {
    const QVariantMap properties = bluez::device_properties(objects.value(QDBusObjectPath(device)), radio);
    name = bluez::name_of(properties);
    if (!properties.value(QStringLiteral("ServicesResolved")).toBool())
        return;
    const auto found = find_gatt_port(objects, device);
    if (!found)
        return fail(QStringLiteral("%1 is connected, but has no service that an adapter has.").arg(name));
    port = *found;
    subscribe();
}

void gatt_channel::subscribe() {
    begin(step::subscribing);
    follow(port.notifies);
    when(bluez::ask(port.notifies, bluez::characteristic_interface, QStringLiteral("StartNotify"), {},
                    patience.interval()),
         [this](const QDBusPendingCall& answered) {
             // In progress: the service has kept the subscription from before.
             if (answered.isError() && !is_error(answered.error(), "InProgress"))
                 return fail(why_refused(answered.error()));
             is_subscribed = true;
             begin(step::open);
             Q_EMIT opened();
         });
}

std::optional<QDBusPendingCall> gatt_channel::leave() {
    const step before = std::exchange(now, step::over);
    patience.stop();
    stop_search();
    if (is_subscribed)
        bluez::ask(port.notifies, bluez::characteristic_interface, QStringLiteral("StopNotify"));
    if (before < step::connecting || before == step::over || was_connected)
        return std::nullopt;
    return bluez::ask(device, bluez::device_interface, QStringLiteral("Disconnect"));
}

// --- commands and replies ----------------------------------------------------------------------------------

void gatt_channel::write(const QByteArray& bytes) {
    unwritten += bytes;
    if (!is_writing)
        write_next();
}

void gatt_channel::write_next() {
    is_writing = !unwritten.isEmpty();
    if (!is_writing)
        return;
    const QByteArray piece = unwritten.left(port.longest_write);
    unwritten.remove(0, piece.size());
    when(bluez::ask(port.written, bluez::characteristic_interface, QStringLiteral("WriteValue"),
                    {piece, with_type(port.without_response ? "command" : "request")}, patience.interval()),
         [this](const QDBusPendingCall& answered) {
             if (!answered.isError())
                 return write_next();
             if (wants_pairing(answered.error()))
                 return fail(why_refused(answered.error()));
             console_log(answered.error().message());
             lose(); // half a command is worse than none
         });
}

void gatt_channel::follow(const QString& path) {
    QDBusConnection::systemBus().connect(bluez_owner, path, bluez::properties_interface,
                                         QStringLiteral("PropertiesChanged"), this,
                                         SLOT(take_change(QDBusMessage)));
}

void gatt_channel::take_change(const QDBusMessage& signal) {
    if (now == step::over)
        return;
    const QVariantMap changed = qdbus_cast<QVariantMap>(signal.arguments().value(1));
    if (signal.path() == device)
        return take_device_change(changed);
    if (signal.path() == radio && !changed.value(QStringLiteral("Powered"), true).toBool())
        return lose();
    const QByteArray bytes = changed.value(QStringLiteral("Value")).toByteArray();
    if (signal.path() == port.notifies && now == step::open && !bytes.isEmpty())
        Q_EMIT received(bytes);
}

void gatt_channel::take_device_change(const QVariantMap& changed) {
    if (!changed.value(QStringLiteral("Connected"), true).toBool())
        return lose();
    if (now == step::resolving && changed.value(QStringLiteral("ServicesResolved")).toBool())
        look_for_port();
}

void gatt_channel::take_removal(const QDBusMessage& signal) {
    const QString gone = signal.arguments().value(0).value<QDBusObjectPath>().path();
    if (now != step::over && (gone == device || gone == radio || gone == port.notifies))
        lose();
}

// --- the ends ----------------------------------------------------------------------------------------------

void gatt_channel::lose() {
    if (now == step::open)
        Q_EMIT closed();
    else if (now != step::over)
        fail(QStringLiteral("%1 broke the connection while it was being set up. See that it is plugged in, "
                            "lit and near.")
                 .arg(name));
}

void gatt_channel::out_of_patience() {
    switch (now) {
    case step::looking: return fail(why_unusable(bluetooth_condition::no_answer));
    case step::searching:
        return fail(QStringLiteral("%1 was not found nearby. See that it is plugged in, lit and near, and "
                                   "that no phone or other computer is connected to it.")
                        .arg(name));
    case step::resolving:
        return fail(QStringLiteral("%1 is connected, but does not tell what it offers. Unplug it for ten "
                                   "seconds, then try again.")
                        .arg(name));
    default: return fail(why_refused(QDBusError()));
    }
}

void gatt_channel::fail(const QString& reason) {
    console_log(QStringLiteral("Error - %1").arg(reason));
    Q_EMIT failed(reason);
}

bool gatt_channel::wants_pairing(const QDBusError& error) const {
    return !paired && (is_error(error, "NotPermitted") || is_error(error, "NotAuthorized"));
}

QString gatt_channel::why_refused(const QDBusError& error) const {
    if (error.isValid())
        console_log(error.name() + QStringLiteral(": ") + error.message());
    if (wants_pairing(error))
        return QStringLiteral("%1 wants to be paired with this computer first. %2.")
            .arg(name, pairing_advice());
    if (now == step::connecting)
        return QStringLiteral("%1 could not be reached. See that it is plugged in, lit and near, and that no "
                              "phone or other computer is connected to it.")
            .arg(name);
    return QStringLiteral(
               "%1 is connected, but does not let this program hear what it says. Unplug it for ten "
               "seconds, then try again.")
        .arg(name);
}

} // namespace brivant
