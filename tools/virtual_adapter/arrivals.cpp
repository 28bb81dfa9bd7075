#include "tools/virtual_adapter/arrivals.h"

#include "tools/virtual_adapter/bus_time.h"

#include <algorithm>

namespace virtual_adapter {

namespace {

std::vector<arrival> in_order(std::vector<arrival> all) {
    std::stable_sort(all.begin(), all.end(),
                     [](const arrival& a, const arrival& b) { return a.at_ms < b.at_ms; });
    return all;
}

std::size_t place_in(const car& on, std::uint32_t address) {
    const std::vector<ecu>& ecus = on.description().ecus;
    const auto found =
        std::find_if(ecus.begin(), ecus.end(), [=](const ecu& e) { return e.address == address; });
    return std::size_t(found - ecus.begin());
}

} // namespace

std::vector<arrival> arrivals(const answers_to_a_request& answers, const car& on, const timing& takes,
                              chance& spread) {
    const protocol& network = on.network();
    std::vector<arrival> all;
    double bus_is_free = 0;
    for (const answer& from : *answers) {
        const double delay =
            std::max(takes.ecu_at(place_in(on, from.address)) + spread.up_to(takes.ecu_spread_ms),
                     shortest_answer_ms(network.kind));
        double ready = is_k_line(network.kind) ? bus_is_free + delay : delay;
        for (const bytes& message : from.messages) {
            if (!is_can(network.kind)) {
                bus_is_free = std::max(ready, bus_is_free) + message_ms(network, message.size());
                ready = bus_is_free + shortest_answer_ms(network.kind);
                all.push_back({answers, {&from, &message, 0}, bus_is_free});
                continue;
            }
            const double one = message_ms(network, message.size());
            double at = ready + one;
            for (std::size_t n = 0; n < can_frames(message); ++n) {
                if (n == 1)
                    at += takes.flow_control_ms + one;
                if (n > 0)
                    at += takes.frame_gap_ms + one;
                all.push_back({answers, {&from, &message, n}, at});
            }
        }
    }
    return in_order(std::move(all));
}

std::vector<arrival> arrivals(const answers_to_a_request& answers, bus kind) {
    // On CAN a frame goes out every two ticks, and each further ECU begins three ticks after the one before
    // it, so that long answers of two ECUs interleave. On the older protocols they take turns.
    std::vector<arrival> all;
    std::size_t who = 0;
    for (const answer& from : *answers) {
        for (const bytes& message : from.messages)
            for (std::size_t n = 0; n < (is_can(kind) ? can_frames(message) : 1); ++n)
                all.push_back({answers, {&from, &message, n}, is_can(kind) ? double(who * 3 + n * 2) : 0});
        ++who;
    }
    return in_order(std::move(all));
}

} // namespace virtual_adapter
