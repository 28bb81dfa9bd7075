#include "tools/bluez_stand_in/bluez_service.h"

#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <algorithm>

using interface_map = QMap<QString, QVariantMap>;
using object_map = QMap<QDBusObjectPath, interface_map>;
Q_DECLARE_METATYPE(interface_map)
Q_DECLARE_METATYPE(object_map)

namespace {

constexpr int between_finds_ms = 20;

const QString service_name = QStringLiteral("org.bluez");
const QString adapter_path = QStringLiteral("/org/bluez/hci0");
const QString adapter_interface = QStringLiteral("org.bluez.Adapter1");
const QString device_interface = QStringLiteral("org.bluez.Device1");
const QString properties_interface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString manager_interface = QStringLiteral("org.freedesktop.DBus.ObjectManager");
const QString serial_port = QStringLiteral("00001101-0000-1000-8000-00805f9b34fb");
const QString audio_sink = QStringLiteral("0000110b-0000-1000-8000-00805f9b34fb");

// Before pairing a device may not have told what it offers.
QStringList services_of(const stand_in_device& device) {
    if (device.serial)
        return {serial_port};
    return device.paired ? QStringList(audio_sink) : QStringList();
}

QString path_of(const stand_in_device& device) {
    return adapter_path + QStringLiteral("/dev_") + QString(device.address).replace(u':', u'_');
}

QDBusMessage error_for(const QDBusMessage& message, const char* name, const char* text) {
    return message.createErrorReply(QStringLiteral("org.bluez.Error.") + QLatin1String(name),
                                    QLatin1String(text));
}

} // namespace

bluez_service::bluez_service(const QDBusConnection& on) : bus(on) {
    qDBusRegisterMetaType<interface_map>();
    qDBusRegisterMetaType<object_map>();
    // A program that leaves the bus takes its profiles along.
    owners.setConnection(bus);
    owners.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&owners, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& gone) {
        registered.removeIf([&](const auto& entry) { return entry.value().owner == gone; });
    });
    connect(&finding, &QTimer::timeout, this, &bluez_service::find_next);
    bus.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SingleNode);
    bus.registerVirtualObject(QStringLiteral("/org"), this, QDBusConnection::SubPath);
    bus.registerObject(QStringLiteral("/control"), QStringLiteral("org.brivant.BluezStandIn"), this,
                       QDBusConnection::ExportScriptableSlots);
    bus.registerService(QStringLiteral("org.brivant.BluezStandIn"));
}

bool bluez_service::appear() {
    return bus.registerService(service_name);
}

void bluez_service::disappear() {
    bus.unregisterService(service_name);
    finding.stop();
    discovering = false;
    registered.clear();
    close_channels();
}

// --- what the tests change ---------------------------------------------------------------------------------

void bluez_service::put_device(const QString& address, const QString& name, bool paired, bool serial,
                               bool known, const QString& first_name) {
    devices.removeIf([&](const stand_in_device& other) { return other.address == address; });
    devices += {address, name, paired, serial, known, first_name};
}

void bluez_service::set_adapter(bool is_there, bool is_powered) {
    const bool appears = is_there && !has_adapter;
    const bool goes = !is_there && has_adapter;
    has_adapter = is_there;
    powered = is_powered;
    if (appears)
        announce(adapter_path, true);
    else if (goes)
        announce(adapter_path, false);
    else if (has_adapter)
        tell_changed(adapter_path, adapter_interface, {{QStringLiteral("Powered"), powered}});
}

void bluez_service::close_channels() {
    qDeleteAll(findChildren<rfcomm_bridge*>());
}

void bluez_service::say(const QByteArray& bytes) {
    for (rfcomm_bridge* channel : findChildren<rfcomm_bridge*>())
        channel->say(bytes);
}

// --- calls -------------------------------------------------------------------------------------------------

bool bluez_service::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const QString fault = faults.value(message.member());
    if (fault != QLatin1String("silence"))
        return answer(message, fault);
    unanswered += message;
    return true;
}

void bluez_service::answer_late(const QString& error) {
    for (const QDBusMessage& message : std::exchange(unanswered, {}))
        answer(message, error);
}

// False for a method that is not known.
bool bluez_service::answer(const QDBusMessage& message, const QString& error) {
    if (!error.isEmpty())
        return bus.send(message.createErrorReply(error, QStringLiteral("so the test wants it")));
    const std::optional<QDBusMessage> reply = answer_to(message);
    if (reply && reply->type() != QDBusMessage::InvalidMessage)
        bus.send(*reply);
    return reply.has_value();
}

std::optional<QDBusMessage> bluez_service::answer_to(const QDBusMessage& message) {
    const QString member = message.member();
    if (message.interface() == properties_interface)
        return properties(message);
    if (member == QLatin1String("GetManagedObjects")) {
        object_map objects;
        QStringList paths{QStringLiteral("/org/bluez"), adapter_path};
        for (const stand_in_device& device : devices)
            if (device.is_known)
                paths += path_of(device);
        for (const QString& path : paths)
            if (const auto interfaces = interfaces_of(path); !interfaces.isEmpty())
                objects.insert(QDBusObjectPath(path), interfaces);
        return message.createReply(QVariant::fromValue(objects));
    }
    if (member == QLatin1String("RegisterProfile"))
        return register_profile(message);
    if (member == QLatin1String("UnregisterProfile"))
        return unregister_profile(message);
    if (member == QLatin1String("StartDiscovery") || member == QLatin1String("StopDiscovery"))
        return set_discovering(message, member == QLatin1String("StartDiscovery"));
    if (member == QLatin1String("SetDiscoveryFilter"))
        return message.createReply();
    if (member == QLatin1String("ConnectProfile"))
        return connect_profile(message);
    if (member == QLatin1String("DisconnectProfile") || member == QLatin1String("Disconnect")) {
        close_channels();
        return message.createReply();
    }
    return std::nullopt;
}

// A second profile for the same service is refused, whoever asks.
QDBusMessage bluez_service::register_profile(const QDBusMessage& message) {
    const auto path = message.arguments().value(0).value<QDBusObjectPath>().path();
    const QString uuid = message.arguments().value(1).toString().toLower();
    if (registered.contains(uuid))
        return error_for(message, "NotPermitted", "UUID already registered");
    registered.insert(uuid, {message.service(), path});
    owners.addWatchedService(message.service());
    return message.createReply();
}

QDBusMessage bluez_service::unregister_profile(const QDBusMessage& message) {
    const auto path = message.arguments().value(0).value<QDBusObjectPath>().path();
    const auto removed = registered.removeIf([&](const auto& entry) {
        return entry.value().owner == message.service() && entry.value().path == path;
    });
    return removed > 0 ? message.createReply() : error_for(message, "DoesNotExist", "Does Not Exist");
}

QDBusMessage bluez_service::set_discovering(const QDBusMessage& message, bool now) {
    if (!has_adapter || !powered)
        return error_for(message, "NotReady", "Resource Not Ready");
    discovering = now;
    tell_changed(adapter_path, adapter_interface, {{QStringLiteral("Discovering"), now}});
    if (now)
        finding.start(between_finds_ms);
    else
        finding.stop();
    return message.createReply();
}

QDBusMessage bluez_service::connect_profile(const QDBusMessage& message) {
    const stand_in_device* device = device_at(message.path());
    const QString uuid = message.arguments().value(0).toString().toLower();
    if (!device || !registered.contains(uuid))
        return error_for(message, "DoesNotExist", "Does Not Exist");
    if (!powered)
        return error_for(message, "NotReady", "br-connection-adapter-not-powered");
    if (!device->paired)
        return error_for(message, "Failed", "br-connection-refused");
    const profile& asked_for = registered[uuid];
    auto* bridge = new rfcomm_bridge(port, received, this);
    QDBusMessage call =
        QDBusMessage::createMethodCall(asked_for.owner, asked_for.path, QStringLiteral("org.bluez.Profile1"),
                                       QStringLiteral("NewConnection"));
    call << QVariant::fromValue(QDBusObjectPath(message.path()))
         << QVariant::fromValue(QDBusUnixFileDescriptor(bridge->descriptor())) << QVariantMap();
    auto* taken = new QDBusPendingCallWatcher(bus.asyncCall(call), bridge);
    bridge->release_descriptor();
    connect(taken, &QDBusPendingCallWatcher::finished, bridge,
            [this, message, bridge](QDBusPendingCallWatcher* done) {
                const bool refused = done->isError();
                done->deleteLater();
                bus.send(refused ? error_for(message, "Rejected", "Rejected") : message.createReply());
                if (refused)
                    bridge->deleteLater();
            });
    return {}; // answered when the program has taken the channel
}

// --- objects and their properties --------------------------------------------------------------------------

QDBusMessage bluez_service::properties(const QDBusMessage& message) {
    const auto interfaces = interfaces_of(message.path());
    const QVariantMap all = interfaces.value(message.arguments().value(0).toString());
    const QString name = message.arguments().value(1).toString();
    if (message.member() == QLatin1String("GetAll"))
        return message.createReply(all);
    if (message.member() == QLatin1String("Get") && all.contains(name))
        return message.createReply(QVariant::fromValue(QDBusVariant(all.value(name))));
    return message.createErrorReply(QDBusError::UnknownProperty, QStringLiteral("No such property"));
}

QVariantMap bluez_service::adapter_properties() const {
    return {{QStringLiteral("Address"), QStringLiteral("00:11:22:33:44:55")},
            {QStringLiteral("Name"), QStringLiteral("stand-in")},
            {QStringLiteral("Alias"), QStringLiteral("stand-in")},
            {QStringLiteral("Class"), 0u},
            {QStringLiteral("Powered"), powered},
            {QStringLiteral("Discoverable"), false},
            {QStringLiteral("Pairable"), true},
            {QStringLiteral("Discovering"), discovering},
            {QStringLiteral("UUIDs"), QStringList()}};
}

QVariantMap bluez_service::device_properties(const stand_in_device& device) const {
    const bool is_named = device.first_name.isEmpty();
    QVariantMap properties{{QStringLiteral("Address"), device.address},
                           {QStringLiteral("Alias"), is_named ? device.name : device.first_name},
                           {QStringLiteral("Class"), 0x1f00u},
                           {QStringLiteral("Paired"), device.paired},
                           {QStringLiteral("Trusted"), false},
                           {QStringLiteral("Connected"), false},
                           {QStringLiteral("RSSI"), QVariant::fromValue(short(-60))},
                           {QStringLiteral("UUIDs"), services_of(device)},
                           {QStringLiteral("Adapter"), QVariant::fromValue(QDBusObjectPath(adapter_path))}};
    if (is_named)
        properties.insert(QStringLiteral("Name"), device.name);
    return properties;
}

QMap<QString, QVariantMap> bluez_service::interfaces_of(const QString& path) {
    if (path == QLatin1String("/org/bluez"))
        return {{QStringLiteral("org.bluez.ProfileManager1"), {}}};
    if (!has_adapter)
        return {};
    if (path == adapter_path)
        return {{adapter_interface, adapter_properties()}, {properties_interface, {}}};
    if (const stand_in_device* device = device_at(path))
        return {{device_interface, device_properties(*device)}, {properties_interface, {}}};
    return {};
}

stand_in_device* bluez_service::device_at(const QString& path) {
    const auto found = std::find_if(devices.begin(), devices.end(),
                                    [&](const stand_in_device& device) { return path_of(device) == path; });
    return found == devices.end() ? nullptr : &*found;
}

// One step of a scan: the next device appears, first without its name where that arrives late.
void bluez_service::find_next() {
    for (stand_in_device& device : devices) {
        if (!device.is_known) {
            device.is_known = true;
            return announce(path_of(device), true);
        }
        if (!device.first_name.isEmpty()) {
            device.first_name.clear();
            return tell_changed(
                path_of(device), device_interface,
                {{QStringLiteral("Name"), device.name}, {QStringLiteral("Alias"), device.name}});
        }
    }
    finding.stop();
}

void bluez_service::announce(const QString& path, bool is_added) {
    QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/"), manager_interface,
                                                     is_added ? QStringLiteral("InterfacesAdded")
                                                              : QStringLiteral("InterfacesRemoved"));
    signal << QVariant::fromValue(QDBusObjectPath(path));
    if (is_added)
        signal << QVariant::fromValue(interfaces_of(path));
    else
        signal << QStringList{adapter_interface, properties_interface};
    bus.send(signal);
}

void bluez_service::tell_changed(const QString& path, const QString& interface, const QVariantMap& what) {
    QDBusMessage signal =
        QDBusMessage::createSignal(path, properties_interface, QStringLiteral("PropertiesChanged"));
    signal << interface << what << QStringList();
    bus.send(signal);
}
