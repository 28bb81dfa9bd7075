#pragma once

#include "link/adapter_address.h"
#include "tests/bluetooth/stand_in.h"
#include "tools/virtual_adapter/pty_adapter.h"

#include <QTemporaryDir>
#include <array>

namespace brivant {

struct link_kind {
    const char* name;
    int code;
    const char* adapter; // one of virtual_adapter::adapter_kinds(), as they are usual there
};
inline constexpr std::array link_kinds{
    link_kind{"wifi", interface_wifi, "wifi"}, link_kind{"usb", interface_serial, "elm327-v1.4"},
    link_kind{"bluetooth", interface_bluetooth, "clone-2.1"}, link_kind{"le", interface_le, "ble"}};

inline void PrintTo(const link_kind& its, std::ostream* out) {
    *out << its.name;
}

// The virtual adapter where a link of that kind ends. What it cuts off by itself can be had again soon.
class far_end {
public:
    explicit far_end(const link_kind& its) : kind(its.code) {
        cable.set_link(port_path);
        unplugged.setSingleShot(true);
        unplugged.setInterval(plugged_in_again_ms);
        unplugged.callOnTimeout([this] { cable.plug_in(car); });
        QObject::connect(&cable, &pty_adapter::unplugged, &unplugged, qOverload<>(&QTimer::start));
        if (kind == interface_bluetooth || kind == interface_le)
            service.emplace();
        if (kind == interface_le)
            service->put_le();
    }
    // Both apply from the next plug_in() on.
    void set_options(const virtual_adapter::adapter_options& options) {
        cable.set_options(options);
        server.set_options(options);
    }
    void set_observer(const virtual_adapter::adapter_session::observer& seen) {
        cable.set_observer(seen);
        server.set_observer(seen);
    }
    void plug_in(std::shared_ptr<virtual_adapter::car> on, const virtual_adapter::faults& what = {}) {
        car = std::move(on);
        if (kind == interface_serial) {
            cable.set_faults(what);
            EXPECT_NE(cable.plug_in(car), "");
            return unplugged.stop();
        }
        server.set_faults(what);
        port = server.start(car, port);
        EXPECT_NE(port, 0);
        if (service)
            service->call("set_port", {port});
    }
    adapter_address address() const {
        switch (kind) {
        case interface_serial: return {kind, port_path, 38400};
        case interface_bluetooth: return {kind, obd_address};
        case interface_le: return {kind, le_address};
        default: return {kind, "127.0.0.1", port};
        }
    }

    std::shared_ptr<virtual_adapter::car> car;

private:
    static constexpr int plugged_in_again_ms = 50;

    const int kind;
    const QTemporaryDir folder;
    const QString port_path = folder.filePath("usb-adapter");
    std::optional<stand_in> service;
    virtual_adapter_server server;
    quint16 port = 0;
    pty_adapter cable;
    QTimer unplugged;
};

} // namespace brivant
