#include "tools/virtual_adapter/ceiling.h"

#include "tools/virtual_adapter/hex_digit.h"
#include "tools/virtual_adapter/ideal_client.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace virtual_adapter {

namespace {

constexpr std::size_t most_pids_in_a_request = 6;

// The PIDs that are asked of one ECU.
struct share {
    const ecu* unit = nullptr;
    std::vector<std::uint8_t> pids;
};

// A sweep over all shares.
struct plan {
    std::vector<std::string> lines;
    double ms = 0;
};

std::string line(const ideal_client::cost& took, const std::string& what) {
    char text[200];
    std::snprintf(text, sizeof text, "%s: %.2f ms (%.2f to the adapter, %.2f adapter and car, %.2f back)%s",
                  took.sent.c_str(), took.ms(), took.to_adapter_ms, took.at_work_ms, took.back_ms,
                  what.c_str());
    return text;
}

std::string number(const char* format, double value) {
    char text[100];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::size_t answer_length(car& on, const ecu& unit, std::uint8_t pid) {
    const std::uint8_t request[] = {0x01, pid};
    const std::vector<answer> answers = on.ask(request, {unit.address});
    const bool has_it = !answers.empty() && answers.front().messages.front().front() == 0x41;
    return has_it ? answers.front().messages.front().size() : 0;
}

// Each PID at the first ECU that has it, short answers before long ones. What nobody has goes to `lines`.
std::vector<share> shares_of(car& on, std::span<const std::uint8_t> pids, std::vector<std::string>& lines) {
    std::vector<share> shares;
    for (const ecu& unit : on.description().ecus)
        shares.push_back({&unit, {}});
    for (const std::uint8_t pid : pids) {
        const auto found = std::find_if(shares.begin(), shares.end(),
                                        [&](const share& s) { return answer_length(on, *s.unit, pid) > 0; });
        if (found != shares.end())
            found->pids.push_back(pid);
        else
            lines.push_back("PID " + hex_text(pid, 2) + ": no ECU has it");
    }
    std::erase_if(shares, [](const share& s) { return s.pids.empty(); });
    for (share& s : shares)
        std::stable_sort(s.pids.begin(), s.pids.end(), [&](std::uint8_t a, std::uint8_t b) {
            return answer_length(on, *s.unit, a) < answer_length(on, *s.unit, b);
        });
    return shares;
}

// The division into requests that takes the least time: the best for the first PID, the first two and so on.
void add_requests(plan& sweep, const share& of, ideal_client& client, std::size_t most, bool with_stpx) {
    struct step {
        double ms = 0;
        std::size_t from = 0;
        ideal_client::cost last = {};
    };
    std::vector<step> best(of.pids.size() + 1);
    for (std::size_t end = 1; end < best.size(); ++end) {
        best[end].ms = std::numeric_limits<double>::infinity();
        for (std::size_t count = 1; count <= std::min(most, end); ++count) {
            const std::size_t from = end - count;
            const auto took = client.of_request(*of.unit, std::span(of.pids).subspan(from, count), with_stpx);
            if (best[from].ms + took.ms() < best[end].ms)
                best[end] = {best[from].ms + took.ms(), from, took};
        }
    }
    for (std::size_t end = of.pids.size(); end > 0; end = best[end].from)
        sweep.lines.push_back(line(best[end].last, ", values: " + std::to_string(end - best[end].from)));
    sweep.ms += best.back().ms;
}

// A sweep begins with the ECU that the one before has ended with, so that one of them needs no address.
plan sweep_over(const std::vector<share>& shares, ideal_client& client, std::size_t most, bool with_stpx) {
    plan sweep;
    const double addressed = shares.empty() ? 0 : 1 - 1.0 / static_cast<double>(shares.size());
    for (const share& of : shares) {
        const std::string address = client.address(*of.unit);
        if (!address.empty() && !with_stpx) {
            const ideal_client::cost took = client.of(address);
            if (shares.size() > 1) {
                sweep.lines.push_back(line(took, number(", in %.2f of the sweeps", addressed)));
                sweep.ms += addressed * took.ms();
            } else {
                sweep.lines.push_back(address + ": once");
            }
        }
        add_requests(sweep, of, client, most, with_stpx);
    }
    return sweep;
}

} // namespace

ceiling ceiling_of(const std::shared_ptr<car>& on, const adapter_options& options,
                   std::span<const std::uint8_t> pids) {
    ceiling made;
    const std::vector<share> shares = shares_of(*on, pids, made.lines);
    ideal_client client(on, options);
    const bool is_on_can = is_can(on->network().kind);
    const std::size_t most = is_on_can ? most_pids_in_a_request : 1;
    plan sweep = sweep_over(shares, client, most, false);
    if (client.knows_stpx() && is_on_can && shares.size() > 1)
        if (plan other = sweep_over(shares, client, most, true); other.ms < sweep.ms)
            sweep = std::move(other);
    std::size_t values = 0;
    for (const share& of : shares)
        values += of.pids.size();
    if (values > 0)
        made.values_per_second = double(values) * 1000 / sweep.ms;
    made.lines.insert(made.lines.end(), sweep.lines.begin(), sweep.lines.end());
    made.lines.push_back("values a sweep: " + std::to_string(values));
    made.lines.push_back(number("a sweep: %.2f ms", sweep.ms));
    made.lines.push_back(number("values a second: %.1f", made.values_per_second));
    return made;
}

} // namespace virtual_adapter
