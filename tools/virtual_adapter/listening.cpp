#include "tools/virtual_adapter/listening.h"

#include "tools/virtual_adapter/bus_time.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

namespace virtual_adapter {

void listening::forget() {
    m_wait.forget();
    m_late.clear();
}

// Of the frames that nobody has heard yet. Without its first frame a long answer does not go on.
std::vector<arrival> listening::still_coming(double start_ms) {
    std::vector<arrival> coming;
    std::set<const bytes*> lost;
    for (arrival& late : m_late) {
        if (late.at_ms > start_ms && !lost.contains(late.what.message))
            coming.push_back(std::move(late));
        else if (late.what.number == 0)
            lost.insert(late.what.message);
    }
    m_late.clear();
    return coming;
}

listening::outcome listening::hear(const request& asked, const car& on, const adapter_settings& set,
                                   double start_ms) {
    const protocol& network = on.network();
    const double start = std::max(start_ms, m_bus_is_free_ms);
    const double sent = m_takes ? start + request_ms(network, asked.bytes) : start_ms;
    const double wait = m_takes ? m_wait.ms(set, asked.wait_ms) : std::numeric_limits<double>::infinity();

    std::vector<arrival> all = still_coming(start);
    for (arrival& one :
         m_takes ? arrivals(asked.answers, on, *m_takes, m_spread) : arrivals(asked.answers, network.kind)) {
        one.at_ms += sent;
        all.push_back(std::move(one));
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const arrival& a, const arrival& b) { return a.at_ms < b.at_ms; });
    if (m_takes && !all.empty() && is_k_line(network.kind))
        m_bus_is_free_ms = all.back().at_ms + rest_ms(network.kind);

    outcome made;
    double last = sent;
    double longest = 0;
    auto next = all.begin();
    for (; next != all.end() && next->at_ms <= last + wait && made.heard.size() < asked.most_frames; ++next) {
        const bool comes = set.controls_flow || !is_can(network.kind) || next->what.number == 0;
        if (!comes || !set.receives.pass(next->what.from->address, network.kind))
            continue;
        longest = std::max(longest, next->at_ms - last);
        last = next->at_ms;
        made.heard.push_back(*next);
    }
    const bool has_enough = made.heard.size() >= asked.most_frames;
    made.end_ms = has_enough ? last : last + wait;
    if (!m_takes) {
        made.end_ms = start_ms;
        return made;
    }
    m_late.assign(std::make_move_iterator(next), std::make_move_iterator(all.end()));
    if (made.heard.empty())
        m_wait.forget();
    else
        m_wait.heard(longest);
    return made;
}

} // namespace virtual_adapter
