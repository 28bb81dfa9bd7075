#pragma once

#include "tools/virtual_adapter/answer_wait.h"
#include "tools/virtual_adapter/arrivals.h"

#include <optional>

namespace virtual_adapter {

// What the adapter hears after a request, and when it has heard enough. A frame that comes later is heard by
// the next request if it comes behind its beginning, and lost otherwise.
class listening {
public:
    struct request {
        answers_to_a_request answers;
        std::size_t bytes = 0;
        std::size_t most_frames = SIZE_MAX; // the adapter stops at that many
        double wait_ms = 0;                 // 0: as it is set
    };
    struct outcome {
        std::vector<arrival> heard; // at moments of the adapter's clock
        double end_ms = 0;
    };

    explicit listening(std::optional<timing> takes) : m_takes(std::move(takes)) {}

    outcome hear(const request& asked, const car& on, const adapter_settings& set, double start_ms);
    void forget();

private:
    std::vector<arrival> still_coming(double start_ms);

    std::optional<timing> m_takes; // none: everything is heard, and no time passes
    answer_wait m_wait;
    chance m_spread{1};
    std::vector<arrival> m_late;
    double m_bus_is_free_ms = 0;
};

} // namespace virtual_adapter
