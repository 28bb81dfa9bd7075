#include "tools/virtual_adapter/ideal_client.h"

#include "tools/virtual_adapter/bus_time.h"
#include "tools/virtual_adapter/hex_digit.h"

#include <algorithm>
#include <cmath>

namespace virtual_adapter {

namespace {

constexpr double wait_unit_ms = 4.096;

bool is_j1850(bus kind) {
    return kind == bus::pwm || kind == bus::vpw;
}

adapter_options with_means(adapter_options options, const protocol& network) {
    timing& takes = options.time.emplace(options.time.value_or(timing{}));
    for (double& ms : takes.ecu_ms)
        ms += takes.ecu_spread_ms / 2;
    takes.round_trip_ms += takes.jitter_ms / 2;
    takes.ecu_spread_ms = takes.jitter_ms = 0;
    options.stored_protocol = network.number;
    options.stored_automatic = false;
    return options;
}

// The shortest setting of "AT ST" with which no answer is missed.
std::string shortest_wait(const timing& takes, const protocol& network) {
    const double slowest = *std::max_element(takes.ecu_ms.begin(), takes.ecu_ms.end()) + takes.ecu_spread_ms;
    constexpr std::size_t longest_message = 7;
    const double ms = slowest + message_ms(network, longest_message);
    return "ATST" + hex_text(std::uint32_t(std::clamp(std::ceil(ms / wait_unit_ms), 1.0, 255.0)), 2);
}

} // namespace

ideal_client::ideal_client(std::shared_ptr<car> on, adapter_options options)
    : m_car(std::move(on)), m_knows_stpx(!options.st_identity.empty()),
      m_adapter(m_car, with_means(options, m_car->network())),
      m_link(*with_means(options, m_car->network()).time) {
    for (const char* command : {"ATE0", "ATS0", "ATH1", "ATAT0", "0100"})
        of(command);
    if (is_j1850(m_car->network().kind))
        of(shortest_wait(*options.time, m_car->network()));
}

exchange ideal_client::ask(const std::string& command, cost& took) {
    exchange done;
    const double began = m_now_ms;
    for (const char c : command + '\r')
        if (std::optional<exchange> one = m_adapter.take(c, m_link.at_adapter(began)))
            done = std::move(*one);
    m_now_ms = m_link.to_client(done).back().at_ms;
    const double prompt_ms = done.parts.back().at_ms;
    took = {command, done.received_ms - began, prompt_ms - done.received_ms, m_now_ms - prompt_ms};
    return done;
}

ideal_client::cost ideal_client::of(const std::string& command) {
    cost took;
    ask(command, took);
    ask(command, took);
    return took;
}

std::string ideal_client::header(const ecu& unit) const {
    switch (m_car->network().kind) {
    case bus::can11: return hex_text(unit.address - 8, 3);
    case bus::can29: return "DA" + hex_text(unit.address & 0xFF, 2) + "F1";
    case bus::kwp: return "82" + hex_text(unit.address, 2) + "F1";
    default: return {};
    }
}

std::string ideal_client::address(const ecu& unit) const {
    const std::string name = header(unit);
    return name.empty() ? name : "ATSH" + name;
}

ideal_client::cost ideal_client::of_request(const ecu& to, std::span<const std::uint8_t> pids,
                                            bool with_stpx) {
    std::string request = "01";
    for (const std::uint8_t pid : pids)
        request += hex_text(pid, 2);
    if (with_stpx)
        request = "STPXH:" + header(to) + ",D:" + request;
    cost took;
    const std::string reply = ask(request, took).reply;
    const auto frames = std::count(reply.begin(), reply.end(), '\r') - 1; // and a blank line
    if (is_j1850(m_car->network().kind))
        return of(request);
    return of(request + (with_stpx ? ",R:" + std::to_string(frames) : hex_text(std::uint32_t(frames), 1)));
}

} // namespace virtual_adapter
