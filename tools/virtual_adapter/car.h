#pragma once

#include "tools/virtual_adapter/addressing.h"
#include "tools/virtual_adapter/car_description.h"
#include "tools/virtual_adapter/protocols.h"

#include <functional>
#include <span>

namespace virtual_adapter {

struct moment;

// What one ECU sends for one request.
struct answer {
    std::uint32_t address = 0;
    std::vector<bytes> messages; // service byte first; the older protocols need several for long answers
};

// A car whose ECUs answer requests. Cleared codes stay cleared for every adapter on the car. Copies nothing
// of the adapter: how an answer is cut into frames is the adapter's affair. Not for use from several threads.
class car {
public:
    // `description` as parse_car yields it: with a valid protocol and at least one ECU.
    explicit car(car_description description);

    const car_description& description() const { return m_description; }
    const protocol& network() const { return m_protocol; }

    // Seconds since the engine was started; the default counts real time from construction.
    void set_clock(std::function<double()> clock) { m_clock = std::move(clock); }

    // The answers of all ECUs that are asked and answer, in order. Empty with the ignition off, for an empty
    // request and for one that nobody has an answer to.
    std::vector<answer> ask(std::span<const std::uint8_t> request, const addressee& to = {});

private:
    moment now() const;
    void clear_codes(const addressee& to);

    car_description m_description;
    const protocol& m_protocol;
    std::function<double()> m_clock;
    bool m_cleared = false;
    double m_cleared_at_km = 0;
};

} // namespace virtual_adapter
