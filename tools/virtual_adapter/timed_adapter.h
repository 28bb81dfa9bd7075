#pragma once

#include "tools/virtual_adapter/serial_link.h"

namespace virtual_adapter {

// An adapter on its car, behind its link, in time that nobody has to wait for: what is sent at a moment
// yields what the client receives and when.
class timed_adapter {
public:
    // `options` with their timing.
    timed_adapter(std::shared_ptr<car> on, const adapter_options& options, const clone_faults& what = {})
        : m_adapter(std::move(on), options), m_link(options.time.value_or(timing{})) {
        m_adapter.suffer(what);
    }

    // The replies to all commands among those characters. Moments never go back. A character never
    // interrupts: a command that comes before the prompt waits for its turn.
    std::vector<timed_text> send(std::string_view characters, double at_ms) {
        std::vector<timed_text> received;
        for (const char c : characters)
            if (const std::optional<exchange> done = m_adapter.take(c, m_link.at_adapter(at_ms)))
                for (timed_text& piece : m_link.to_client(*done))
                    received.push_back(std::move(piece));
        return received;
    }

private:
    elm327 m_adapter;
    serial_link m_link;
};

} // namespace virtual_adapter
