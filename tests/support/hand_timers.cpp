#include "tests/support/hand_timers.h"

#include <algorithm>

namespace brivant {

class hand_timers::handle : public running_timer {
public:
    handle(std::shared_ptr<std::map<int, entry>> entries, int its_id) : all(std::move(entries)), id(its_id) {}
    ~handle() override { all->erase(id); }

private:
    std::shared_ptr<std::map<int, entry>> all;
    int id;
};

timer_handle hand_timers::one_shot(int milliseconds, std::function<void()> call) {
    return add({now + milliseconds, 0, std::move(call)});
}

timer_handle hand_timers::repeating(int milliseconds, std::function<void()> call) {
    return add({now + milliseconds, milliseconds, std::move(call)});
}

timer_handle hand_timers::add(entry made) {
    waiting->emplace(++next_id, std::move(made));
    return std::make_unique<handle>(waiting, next_id);
}

void hand_timers::advance(int milliseconds) {
    const int until = now + milliseconds;
    for (;;) {
        const auto next =
            std::min_element(waiting->begin(), waiting->end(),
                             [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
        if (next == waiting->end() || next->second.due > until)
            break;
        now = next->second.due;
        const auto call = next->second.call; // it may stop its own timer
        if (next->second.every > 0)
            next->second.due += next->second.every;
        else
            waiting->erase(next);
        call();
    }
    now = until;
}

} // namespace brivant
