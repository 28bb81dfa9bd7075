#include "livedata/probe_answers.h"

#include <algorithm>

namespace brivant {

namespace {

template <typename Number>
bool is_less(const probe_answers& now, const probe_answers& before, Number number) {
    constexpr double clear_share = 0.85; // of the pairs of one and another
    constexpr double clear_ms = 3;
    qsizetype less = 0;
    for (const probe_answer& one : now)
        less += std::count_if(before.begin(), before.end(), [&](const probe_answer& other) {
            return std::invoke(number, one) < std::invoke(number, other);
        });
    return median_of(now, number) + clear_ms <= median_of(before, number) &&
           static_cast<double>(less) >= clear_share * static_cast<double>(now.size() * before.size());
}

} // namespace

double median(QList<double> numbers) {
    if (numbers.isEmpty())
        return 0;
    std::sort(numbers.begin(), numbers.end());
    return numbers[numbers.size() / 2];
}

int unanswered(const probe_answers& came) {
    return static_cast<int>(
        std::count_if(came.begin(), came.end(), [](const probe_answer& one) { return !one.is_whole; }));
}

// Behind the request, or behind the first byte: a radio whose way takes now more and now less time delays
// both.
bool is_sooner(const probe_answers& now, const probe_answers& before) {
    return is_less(now, before, &probe_answer::whole_ms) || is_less(now, before, &probe_answer::tail_ms);
}

} // namespace brivant
