#include "tools/bluez_stand_in/bluez_service.h"

#include <QCoreApplication>
#include <cstdio>

// Stands in for the Bluetooth service on a bus of its own, for the tests and for trying the program without a
// radio (see the script "try" beside this file). With "--port N" it has three devices, the first of them
// paired; behind each stands the adapter on that TCP port.

namespace {

void put_devices(bluez_service& service, int port) {
    service.put_device(QStringLiteral("00:1D:A5:68:98:8B"), QStringLiteral("OBDII"), true, true, true, {});
    service.put_device(QStringLiteral("00:0D:18:3A:67:89"), QStringLiteral("V-LINK"), false, false, false,
                       QStringLiteral("00-0D-18-3A-67-89"));
    service.put_device(QStringLiteral("F4:4E:FC:12:9A:01"), QStringLiteral("Living room speaker"), true,
                       false, true, {});
    service.set_port(port);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.contains(QStringLiteral("--version"))) // as the real one is asked for its version
        return std::puts("5.66") < 0;
    const QDBusConnection bus = QDBusConnection::systemBus();
    bluez_service service(bus);
    if (!bus.isConnected() || !service.appear()) {
        std::fputs("The bus in DBUS_SYSTEM_BUS_ADDRESS cannot be used, or has a Bluetooth service.\n",
                   stderr);
        return 1;
    }
    if (const qsizetype at = words.indexOf(QStringLiteral("--port")); at > 0)
        put_devices(service, words.value(at + 1).toInt());
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
