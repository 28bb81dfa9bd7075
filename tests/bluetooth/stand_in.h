#pragma once

#include "tests/support/print_qt.h"
#include "tests/support/wait_until.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <gtest/gtest.h>

namespace brivant {

const QString obd_address = "AA:BB:CC:DD:EE:01";   // paired, with a serial port
const QString late_address = "AA:BB:CC:DD:EE:02";  // not paired, found by a scan, its name arrives late
const QString phone_address = "AA:BB:CC:DD:EE:03"; // paired, without a serial port
const QString le_address = "C0:BB:CC:DD:EE:05";    // Bluetooth LE; put there by the tests that want it

// A bus of its own with a Bluetooth service on it, in the place of the system's for the rest of the process.
class private_bus {
public:
    // False when it could not be had.
    bool start() {
        bus.start("dbus-daemon", {"--config-file=" BV_BUS_CONFIG, "--nofork", "--print-address"});
        if (!bus.waitForReadyRead())
            return false;
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.readLine().trimmed());
        qputenv("BLUETOOTH_FORCE_DBUS_LE_VERSION", "5.66"); // QtBluetooth would ask the service's program
        service.start(BV_BLUEZ_STAND_IN, QStringList());
        return service.waitForReadyRead() && service.readLine() == "ready\n";
    }
    ~private_bus() {
        for (QProcess* process : {&service, &bus}) {
            process->kill();
            process->waitForFinished();
        }
    }

private:
    QProcess bus;
    QProcess service;
};

// The Bluetooth service of the bus as the tests find it at first: usable, with three devices, each an adapter
// on a CAN car behind its serial port.
class stand_in {
public:
    stand_in() {
        call("appear");
        call("close_channels");
        call("forget_devices");
        call("set_adapter", {true, true});
        for (const char* member : {"GetManagedObjects", "StartDiscovery", "RegisterProfile", "ConnectProfile",
                                   "Connect", "Disconnect", "StartNotify", "WriteValue"})
            call("set_fault", {member, ""});
        call("answer_late", {"org.bluez.Error.Failed"});
        call("put_device", {obd_address, "OBDII", true, true, true, ""});
        call("put_device", {late_address, "V-LINK", false, false, false, "AA-BB-CC-DD-EE-02"});
        call("put_device", {phone_address, "Phone", true, false, true, ""});
        QString problem;
        port = server.start(virtual_adapter::load_car("can11", problem));
        call("set_port", {port});
        call("take_received");
    }
    // A Bluetooth LE device, of which the service knows. See LeDevice in tools/bluez_stand_in/gatt.py.
    void put_le(const QStringList& characteristics = usual, int mtu = 23, bool known = true) {
        call("put_le_device", {le_address, "IOS-Vlink", known, characteristics, mtu});
    }
    void set_le(const char* key, const QVariant& value) { call("set_le", {le_address, key, value}); }
    // By its name in tools/bluez_stand_in.
    QVariant call(const QString& method, const QVariantList& arguments = {}) {
        const QString name = "org.brivant.BluezStandIn";
        QDBusMessage message = QDBusMessage::createMethodCall(name, "/control", name, method);
        message.setArguments(arguments);
        const QDBusMessage reply = QDBusConnection::systemBus().call(message);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
        return reply.arguments().value(0);
    }
    static inline const QStringList usual{"fff0 fff1 notify", "fff0 fff2 write-without-response,write"};
    void fault(const char* member, const char* error) { call("set_fault", {member, error}); }

    virtual_adapter_server server;
    int port = 0;
};

} // namespace brivant
