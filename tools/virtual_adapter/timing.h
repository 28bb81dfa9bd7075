#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace virtual_adapter {

// How long everything takes between a client and the car, in milliseconds. What the network itself takes is
// in bus_time.h.
struct timing {
    std::vector<double> ecu_ms{10}; // from a request to the answer, by the place of the ECU in the car; the
                                    // last number holds for all further ECUs
    double ecu_spread_ms = 0;       // up to that much more, evenly
    double frame_gap_ms = 0.5;      // of an ECU between the frames of a long CAN answer

    double command_ms = 1;      // of the adapter between a return and the work on its command
    double line_ms = 0.5;       // of the adapter between a frame and the first character of its line
    double flow_control_ms = 1; // of the adapter between a first frame and its flow control
    double reset_ms = 500;      // "AT Z"

    int baud = 38400;         // of the adapter's serial line, each way; ten bits a byte
    double round_trip_ms = 0; // of a radio or a network, half of it each way
    double jitter_ms = 0;     // up to that much more a round trip, evenly

    double byte_ms() const { return 10'000.0 / baud; }
    double ecu_at(std::size_t place) const {
        return ecu_ms.empty() ? 0 : ecu_ms[std::min(place, ecu_ms.size() - 1)];
    }
};

// The same numbers in every run, evenly spread.
class chance {
public:
    explicit chance(std::uint32_t seed) : m_state(seed) {}

    double up_to(double most) {
        m_state = m_state * 1664525u + 1013904223u;
        return most * (m_state >> 8) / double(1u << 24);
    }

private:
    std::uint32_t m_state;
};

} // namespace virtual_adapter
