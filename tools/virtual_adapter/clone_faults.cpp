#include "tools/virtual_adapter/clone_faults.h"

#include <algorithm>

namespace virtual_adapter {

namespace {

constexpr std::size_t longest_cut = 7;

struct named_fault {
    std::string_view name;
    bool clone_faults::*does; // nullptr: it ignores a command
    const char* ignored;
};

constexpr named_fault known[] = {
    {"hang", &clone_faults::hangs_on_groups, nullptr},
    {"no-count", &clone_faults::refuses_count, nullptr},
    {"order", &clone_faults::turns_groups, nullptr},
    {"drop", &clone_faults::drops_one, nullptr},
    {"cut", &clone_faults::cuts_groups, nullptr},
    {"buffer", &clone_faults::has_small_buffer, nullptr},
    {"ok-to-all", &clone_faults::says_ok_to_all, nullptr},
    {"ignore-s0", nullptr, "S0"},
    {"ignore-st", nullptr, "ST"},
    {"ignore-at2", nullptr, "AT2"},
    {"ignore-sh", nullptr, "SH"},
    {"ignore-cra", nullptr, "CRA"},
};

} // namespace

bool clone_faults::add(std::string_view name) {
    for (const named_fault& fault : known) {
        if (fault.name != name)
            continue;
        if (fault.does != nullptr)
            this->*fault.does = true;
        else
            ignored.emplace_back(fault.ignored);
        return true;
    }
    return false;
}

std::vector<std::string_view> clone_faults::names() {
    std::vector<std::string_view> all;
    for (const named_fault& fault : known)
        all.push_back(fault.name);
    return all;
}

bool clone_faults::ignores(std::string_view at_command) const {
    return std::any_of(ignored.begin(), ignored.end(),
                       [&](const std::string& beginning) { return at_command.starts_with(beginning); });
}

void clone_faults::change_request(bytes& request) const {
    if (!is_group(request))
        return;
    if (drops_one)
        request.erase(request.begin() + 2);
    if (turns_groups)
        std::reverse(request.begin() + 1, request.end());
}

void clone_faults::change_answers(const bytes& request, std::vector<answer>& answers) const {
    if (!cuts_groups || !is_group(request))
        return;
    for (answer& from : answers)
        for (bytes& message : from.messages)
            message.resize(std::min(message.size(), longest_cut));
}

} // namespace virtual_adapter
