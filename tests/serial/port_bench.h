#pragma once

#include "base/console_log.h"
#include "link/serial_transport.h"
#include "tests/support/print_qt.h"
#include "tests/support/wait_until.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/pty_adapter.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace brivant {

inline std::shared_ptr<virtual_adapter::car> car_at(const QString& name) {
    QString problem;
    auto car = virtual_adapter::load_car(name, problem);
    car->set_clock([] { return virtual_adapter::steady_moment_s; });
    return car;
}

// A serial transport at a port whose name stays when it is plugged in again.
struct port_bench : testing::Test {
    port_bench() {
        silence_console_log();
        QObject::connect(&transport, &transport::opened, [this] { events += "opened"; });
        QObject::connect(&transport, &transport::closed, [this] { events += "closed"; });
        QObject::connect(&transport, &transport::failed, [this](const QString& why) {
            events += "failed";
            reason = why;
        });
        QObject::connect(&transport, &transport::OBDevent, [this](const QString& text) { received += text; });
    }

    void choose(const QString& port, int speed = 0) {
        place.choose({interface_serial, port, speed}, QString());
    }
    // What came of it, and how long it took.
    QString open() {
        events.clear();
        QElapsedTimer clock;
        clock.start();
        transport.open();
        if (transport.state() == transport::condition::opening)
            transport.open(); // no second search
        EXPECT_TRUE(wait_until([this] { return !events.isEmpty(); }));
        took_ms = clock.elapsed();
        return events.join(' ');
    }
    bool arrives(const QString& text) {
        return wait_until([&] { return received == text; });
    }

    QTemporaryDir folder;
    const QString path = folder.filePath("usb-adapter");
    adapter_place place;
    serial_transport transport{place};
    QStringList events;
    QString reason;
    QString received;
    qint64 took_ms = 0;
};

} // namespace brivant
