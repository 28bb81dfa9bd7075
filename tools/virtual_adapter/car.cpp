#include "tools/virtual_adapter/car.h"

#include "tools/virtual_adapter/services.h"

#include <chrono>

namespace virtual_adapter {

namespace {

constexpr std::uint8_t clear_service = 0x04;
constexpr std::uint8_t conditions_not_correct = 0x22;

// A monitor that is supported (low bits of B, all of C) has not completed (high bits of B, all of D).
void reset_readiness(std::array<std::uint8_t, 3>& readiness) {
    auto& [b, c, d] = readiness;
    b = std::uint8_t((b & 0x0F) | (b & 0x07) << 4);
    d = c;
}

// Test results without a finished test read zero, limits too.
void reset_results(ecu& unit) {
    for (auto& [id, records] : unit.monitors)
        for (test_record& record : records)
            record.value = record.minimum = record.maximum = 0;
    for (auto& [id, records] : unit.test_limits)
        for (limit_record& record : records)
            record.value = record.limit = 0;
}

} // namespace

car::car(car_description description)
    : m_description(std::move(description)), m_protocol(*find_protocol(m_description.protocol_number)) {
    using steady = std::chrono::steady_clock;
    m_clock = [start = steady::now()] {
        return std::chrono::duration<double>(steady::now() - start).count();
    };
}

moment car::now() const {
    moment now;
    now.drive = drive_at(m_clock(), m_description.engine);
    now.battery_v = m_description.battery_tenths / 10.0;
    now.fuel_level = m_description.fuel_level - now.drive.distance_km / 700;
    const double driven = now.drive.distance_km - m_cleared_at_km;
    now.cleared_km = (m_cleared ? 0 : m_description.cleared_km) + driven;
    now.mil_km = m_cleared ? 0 : m_description.mil_km > 0 ? m_description.mil_km + driven : 0;
    return now;
}

void car::clear_codes(const addressee& to) {
    m_cleared = true;
    m_cleared_at_km = now().drive.distance_km;
    for (ecu& unit : m_description.ecus) {
        if (!to.reaches(unit.address))
            continue;
        unit.codes.clear(); // permanent codes stay: only the monitor that set one takes it back
        unit.pending.clear();
        unit.mil.reset();
        if (unit.frame)
            unit.frame.emplace();
        reset_readiness(unit.readiness);
        reset_results(unit);
    }
}

std::vector<answer> car::ask(std::span<const std::uint8_t> request, const addressee& to) {
    std::vector<answer> answers;
    if (!m_description.ignition || request.empty())
        return answers;
    if (request[0] == clear_service && request.size() == 1) {
        const bool refused = m_description.engine_runs;
        if (!refused)
            clear_codes(to);
        for (const ecu& unit : m_description.ecus)
            if (to.reaches(unit.address))
                answers.push_back({unit.address,
                                   {refused ? bytes{0x7F, clear_service, conditions_not_correct}
                                            : bytes{clear_service + 0x40}}});
        return answers;
    }
    circumstances at{is_can(m_protocol.kind), {}};
    if (request[0] == 0x01) // the only service with live values
        at.now = now();
    answers.reserve(m_description.ecus.size());
    for (const ecu& unit : m_description.ecus) {
        if (!to.reaches(unit.address))
            continue;
        std::vector<bytes> found = messages_for(unit, request, at);
        if (!found.empty())
            answers.push_back({unit.address, std::move(found)});
    }
    return answers;
}

} // namespace virtual_adapter
