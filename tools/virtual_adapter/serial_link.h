#pragma once

#include "tools/virtual_adapter/elm327.h"

namespace virtual_adapter {

// Text and the moment at which the client has its last character.
struct timed_text {
    double at_ms = 0;
    std::string text;
};

// The way between the client and the adapter: a serial line, and a radio or network in front of it.
class serial_link {
public:
    explicit serial_link(const timing& takes) : m_takes(takes) {}

    // When the adapter has a character that the client sends at that moment. In the order of sending.
    double at_adapter(double sent_ms);

    // The reply as the client receives it, in pieces of at most 2 ms.
    std::vector<timed_text> to_client(const exchange& done);

private:
    double half_trip_ms() { return (m_takes.round_trip_ms + m_jitter.up_to(m_takes.jitter_ms)) / 2; }

    timing m_takes;
    chance m_jitter{2};
    double m_sent_ms = -1; // of the last character, and what its way through the air took
    double m_way_ms = 0;
    double m_in_is_free_ms = 0;
    double m_out_is_free_ms = 0;
    double m_received_ms = 0; // the last character at the client
};

} // namespace virtual_adapter
