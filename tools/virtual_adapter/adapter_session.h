#pragma once

#include "tools/virtual_adapter/faults.h"
#include "tools/virtual_adapter/serial_link.h"

#include <deque>
#include <functional>

namespace virtual_adapter {

// One client's talk with one adapter: characters in, text out when it is due. Knows no sockets, and of clocks
// what it is told.
class adapter_session {
public:
    using observer = std::function<void(const exchange&)>;
    struct outside {
        std::function<void(std::string_view text)> write;
        std::function<void(int milliseconds)> wait; // waited() is to be called then
        std::function<void()> stop_waiting;
        std::function<void()> close;
        // Only for an adapter with timing: the clock, and waited() at a moment of it.
        std::function<double()> now_ms = {};
        std::function<void(double moment_ms)> wait_until = {};
    };

    // `seen` (or none) is told of every command carried out, before its reply is sent.
    adapter_session(std::shared_ptr<car> on, const adapter_options& options, const faults& what,
                    observer seen, outside link);

    void take(std::string_view text); // what arrives together has been sent together
    void take(char character) { take(std::string_view(&character, 1)); }
    void waited();

private:
    void take(char character, double sent_ms);
    void interrupt();
    void interrupt_at(double moment_ms);
    void deliver_in_time(const exchange& done, const delivery& what);
    void deliver_pieces(const exchange& told, int later_ms = 0);
    void deliver(delivery what);
    void send_due();

    elm327 m_adapter;
    fault_line m_faults;
    observer m_seen;
    outside m_link;
    std::optional<serial_link> m_line; // of an adapter with timing
    double m_busy_until_ms = 0;        // and until when it answers a request
    std::deque<delivery> m_outbox;     // in order; the first one waits
    bool m_waits = false;
};

} // namespace virtual_adapter
