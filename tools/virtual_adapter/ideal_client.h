#pragma once

#include "tools/virtual_adapter/serial_link.h"

namespace virtual_adapter {

// A client that knows everything, on an adapter whose every number is its mean; nobody waits for it.
class ideal_client {
public:
    struct cost {
        std::string sent;
        double to_adapter_ms = 0;
        double at_work_ms = 0; // adapter and car
        double back_ms = 0;
        double ms() const { return to_adapter_ms + at_work_ms + back_ms; }
    };

    ideal_client(std::shared_ptr<car> on, adapter_options options);

    // What a command takes when it follows itself.
    cost of(const std::string& command);
    // The same for a request of service 01 to one ECU, with the count of its frames where that can be used.
    cost of_request(const ecu& to, std::span<const std::uint8_t> pids, bool with_stpx);

    // The command that addresses that ECU; empty where the protocol knows no such thing.
    std::string address(const ecu& unit) const;
    bool knows_stpx() const { return m_knows_stpx; }

private:
    exchange ask(const std::string& command, cost& took);
    std::string header(const ecu& unit) const;

    std::shared_ptr<car> m_car;
    bool m_knows_stpx;
    elm327 m_adapter;
    serial_link m_link;
    double m_now_ms = 0;
};

} // namespace virtual_adapter
