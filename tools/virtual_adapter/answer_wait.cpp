#include "tools/virtual_adapter/answer_wait.h"

#include <algorithm>

namespace virtual_adapter {

double answer_wait::ms(const adapter_settings& set, double asked_ms) const {
    constexpr double unit_ms = 4.096;
    const double full = asked_ms > 0 ? asked_ms : set.wait_ms > 0 ? set.wait_ms : set.wait_units * unit_ms;
    if (set.adaptive == 0 || m_known == 0)
        return full;
    const double slowest = *std::max_element(m_longest.begin(), m_longest.begin() + std::ptrdiff_t(m_known));
    const double learnt =
        set.adaptive == 1 ? std::max(slowest * 2, 32.0) : std::max(slowest * 1.25 + 4, 12.0);
    return std::min(full, learnt);
}

void answer_wait::heard(double longest_ms) {
    if (m_known == 0)
        m_next = 0;
    m_longest[m_next] = longest_ms;
    m_next = (m_next + 1) % m_longest.size();
    m_known = std::min(m_known + 1, m_longest.size());
}

} // namespace virtual_adapter
