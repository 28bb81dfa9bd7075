#pragma once

#include "tools/bluez_stand_in/rfcomm_bridge.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QHash>
#include <QMap>
#include <QTimer>
#include <optional>

// A remote device.
struct stand_in_device {
    QString address; // "AA:BB:CC:DD:EE:01"
    QString name;
    bool paired = false;
    bool serial = false;   // its list of services names the serial port
    bool is_known = false; // the service lists it; the others are found by a scan
    QString first_name;    // what it is called until its name arrives, "" when that is known at once
};

// As much of BlueZ on a bus as a program needs that scans for devices and opens their serial port: the object
// manager, one adapter, its devices, and the profile manager. Nothing of it touches a radio.
class bluez_service : public QDBusVirtualObject {
    Q_OBJECT

public:
    explicit bluez_service(const QDBusConnection& on);

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    QString introspect(const QString&) const override { return {}; }

public Q_SLOTS:
    // The control interface, which stands on the bus as org.brivant.BluezStandIn at /control.

    // Takes the name of BlueZ on the bus, or gives it up. False when that fails.
    Q_SCRIPTABLE bool appear();
    Q_SCRIPTABLE void disappear();
    // Replaces the device of the same address; see stand_in_device.
    Q_SCRIPTABLE void put_device(const QString& address, const QString& name, bool paired, bool serial,
                                 bool known, const QString& first_name);
    Q_SCRIPTABLE void forget_devices() { devices.clear(); }
    Q_SCRIPTABLE void set_adapter(bool is_there, bool is_powered);
    // Calls of the method are answered with that error from now on; "silence": not at all; "": in earnest.
    Q_SCRIPTABLE void set_fault(const QString& member, const QString& error) { faults.insert(member, error); }
    // Answers what was met with silence until now, with that error, "" for in earnest.
    Q_SCRIPTABLE void answer_late(const QString& error);
    // The TCP port of the adapter behind every device; 0 for one that never says a word.
    Q_SCRIPTABLE void set_port(int its_port) { port = static_cast<quint16>(its_port); }
    Q_SCRIPTABLE void close_channels();
    // What the adapter would say, without being asked.
    Q_SCRIPTABLE void say(const QByteArray& bytes);
    // Everything that came over all channels since it was asked for last.
    Q_SCRIPTABLE QByteArray take_received() { return std::exchange(received, {}); }
    // How many channels are open, and how many profiles are registered.
    Q_SCRIPTABLE int channels() const { return static_cast<int>(findChildren<rfcomm_bridge*>().size()); }
    Q_SCRIPTABLE int profiles() const { return static_cast<int>(registered.size()); }
    Q_SCRIPTABLE bool is_discovering() const { return discovering; }

private:
    struct profile {
        QString owner;
        QString path;
    };

    // Invalid when the answer comes later; nothing for an unknown method.
    std::optional<QDBusMessage> answer_to(const QDBusMessage& message);
    QDBusMessage register_profile(const QDBusMessage& message);
    QDBusMessage unregister_profile(const QDBusMessage& message);
    QDBusMessage set_discovering(const QDBusMessage& message, bool now);
    QDBusMessage connect_profile(const QDBusMessage& message);
    bool answer(const QDBusMessage& message, const QString& error);
    QDBusMessage properties(const QDBusMessage& message);
    void find_next();
    void announce(const QString& path, bool is_added);
    void tell_changed(const QString& path, const QString& interface, const QVariantMap& what);
    stand_in_device* device_at(const QString& path);

    QVariantMap adapter_properties() const;
    QVariantMap device_properties(const stand_in_device& device) const;
    // The interfaces of an object with their properties; empty when there is no such object.
    QMap<QString, QVariantMap> interfaces_of(const QString& path);

    QDBusConnection bus;
    QDBusServiceWatcher owners;
    QList<stand_in_device> devices;
    QHash<QString, QString> faults;
    QList<QDBusMessage> unanswered;
    QHash<QString, profile> registered; // by UUID
    QTimer finding;
    QByteArray received;
    quint16 port = 0;
    bool has_adapter = true;
    bool powered = true;
    bool discovering = false;
};
