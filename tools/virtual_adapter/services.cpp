#include "tools/virtual_adapter/services.h"

#include <algorithm>

namespace virtual_adapter {

namespace {

using request_bytes = std::span<const std::uint8_t>;
using messages = std::vector<bytes>;

constexpr std::size_t most_pids_in_a_request = 6;

bool is_group(std::uint8_t identifier) {
    return (identifier & 0x1F) == 0;
}

// Four bytes, highest bit first, for the 32 identifiers behind `group`; the last one stands for the next
// group and is set when any identifier beyond it is known. None when the ECU knows nothing from here on.
// `identifiers` is any map in ascending order of its keys.
template <typename Map>
bool append_support(bytes& out, std::uint8_t group, const Map& identifiers) {
    const auto first = identifiers.upper_bound(group);
    if (first == identifiers.end())
        return false;
    std::uint32_t map = 0;
    for (auto i = first; i != identifiers.end(); ++i) {
        const int place = i->first - group; // 1..255
        map |= 1u << (place < 32 ? 32 - place : 0);
    }
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(std::uint8_t(map >> shift));
    return true;
}

void append_word(bytes& out, unsigned word) {
    out.push_back(std::uint8_t(word >> 8));
    out.push_back(std::uint8_t(word));
}

void append_monitor_status(bytes& out, const ecu& unit) {
    const bool mil = unit.mil.value_or(!unit.codes.empty());
    const auto count = std::min<std::size_t>(unit.codes.size(), 127);
    out.push_back(std::uint8_t((mil ? 0x80 : 0) | count));
    out.insert(out.end(), unit.readiness.begin(), unit.readiness.end());
}

bool append_pid(bytes& out, std::uint8_t pid, const ecu& unit, const circumstances& at) {
    if (is_group(pid)) {
        out.push_back(pid);
        if (append_support(out, pid, unit.pids))
            return true;
        out.pop_back();
        return false;
    }
    const auto found = unit.pids.find(pid);
    if (found == unit.pids.end())
        return false;
    out.push_back(pid);
    if (pid == 0x01)
        append_monitor_status(out, unit);
    else if (found->second.live)
        append_live_value(out, pid, at.now);
    else
        out.insert(out.end(), found->second.constant.begin(), found->second.constant.end());
    return true;
}

// CAN takes up to six PIDs in one request, the older protocols one.
messages current_data(const ecu& unit, request_bytes request, const circumstances& at) {
    const std::size_t count = request.size() - 1;
    if (count < 1 || count > (at.can ? most_pids_in_a_request : 1))
        return {};
    bytes out{0x41};
    out.reserve(8);
    for (const std::uint8_t pid : request.subspan(1))
        append_pid(out, pid, unit, at);
    return out.size() > 1 ? messages{std::move(out)} : messages{};
}

bool append_frozen(bytes& out, std::uint8_t pid, std::uint8_t number, const freeze_frame& frame) {
    if (number != 0)
        return false;
    const std::size_t start = out.size();
    out.insert(out.end(), {pid, number});
    if (pid == 0x02) { // 0000 says that nothing is stored
        append_word(out, frame.code);
        return true;
    }
    if (is_group(pid)) {
        std::map<std::uint8_t, bytes> known = frame.values;
        known.emplace(0x02, bytes{});
        if (append_support(out, pid, known))
            return true;
    } else if (const auto found = frame.values.find(pid); found != frame.values.end()) {
        out.insert(out.end(), found->second.begin(), found->second.end());
        return true;
    }
    out.resize(start);
    return false;
}

// Pairs of PID and frame number: up to three on CAN, one elsewhere.
messages frozen_data(const ecu& unit, request_bytes request, const circumstances& at) {
    const std::size_t count = request.size() - 1;
    if (!unit.frame || count < 2 || count % 2 != 0 || count > (at.can ? 6u : 2u))
        return {};
    bytes out{0x42};
    for (std::size_t i = 1; i + 1 < request.size(); i += 2)
        append_frozen(out, request[i], request[i + 1], *unit.frame);
    return out.size() > 1 ? messages{std::move(out)} : messages{};
}

// CAN counts its codes; the older protocols send three a message and fill the last with zeros.
messages trouble_codes(std::uint8_t reply, const std::vector<trouble_code>& codes, bool can) {
    if (can) {
        bytes out{reply, std::uint8_t(codes.size())};
        for (const trouble_code code : codes)
            append_word(out, code);
        return {std::move(out)};
    }
    messages all;
    std::size_t i = 0;
    do {
        bytes out{reply};
        for (const std::size_t stop = i + 3; i < stop; ++i)
            append_word(out, i < codes.size() ? codes[i] : 0);
        all.push_back(std::move(out));
    } while (i < codes.size());
    return all;
}

messages monitors_can(const ecu& unit, request_bytes request) {
    bytes out{0x46};
    if (std::all_of(request.begin() + 1, request.end(), is_group)) {
        for (const std::uint8_t group : request.subspan(1)) {
            out.push_back(group);
            if (!append_support(out, group, unit.monitors))
                out.pop_back();
        }
        return out.size() > 1 ? messages{std::move(out)} : messages{};
    }
    const auto found = unit.monitors.find(request[1]);
    if (request.size() != 2 || found == unit.monitors.end())
        return {};
    for (const test_record& record : found->second) {
        out.insert(out.end(), {found->first, record.test_id, record.unit_and_scaling});
        append_word(out, record.value);
        append_word(out, record.minimum);
        append_word(out, record.maximum);
    }
    return {std::move(out)};
}

// One message a result; the component's top bit marks a minimum. The support map follows a fill byte FF.
messages monitors_legacy(const ecu& unit, request_bytes request) {
    const std::uint8_t test = request[1];
    if (is_group(test)) {
        bytes out{0x46, test, 0xFF};
        return append_support(out, test, unit.test_limits) ? messages{std::move(out)} : messages{};
    }
    messages all;
    const auto found = unit.test_limits.find(test);
    if (found == unit.test_limits.end())
        return {};
    for (const limit_record& record : found->second) {
        bytes out{0x46, test, std::uint8_t(record.component | (record.is_minimum ? 0x80 : 0))};
        append_word(out, record.value);
        append_word(out, record.limit);
        all.push_back(std::move(out));
    }
    return all;
}

// The items of a vehicle information type, joined; `count` is how many there are. Empty when there are none.
bytes vehicle_items(const ecu& unit, std::uint8_t type, std::uint8_t& count) {
    bytes out;
    count = 1;
    switch (type) {
    case 0x02: return unit.vin;
    case 0x04:
        count = std::uint8_t(unit.calibrations.size());
        for (const std::string& id : unit.calibrations) {
            out.insert(out.end(), id.begin(), id.end());
            out.resize((out.size() + 15) / 16 * 16);
        }
        return out;
    case 0x06:
        count = std::uint8_t(unit.verification_numbers.size());
        for (const std::uint32_t number : unit.verification_numbers) {
            append_word(out, number >> 16);
            append_word(out, number & 0xFFFF);
        }
        return out;
    case 0x0A: return bytes(unit.name.begin(), unit.name.end());
    default: return {};
    }
}

constexpr std::uint8_t item_types[] = {0x02, 0x04, 0x06, 0x0A};

// The older protocols announce a type's message count under the odd number before it and send four bytes a
// message, counted from 1, with zeros in front of the first so that the last is full.
messages vehicle_information(const ecu& unit, request_bytes request, bool can) {
    if (request.size() != 2)
        return {};
    const std::uint8_t type = request[1];
    std::uint8_t count = 0;
    if (is_group(type)) {
        std::map<std::uint8_t, bool> known;
        for (const std::uint8_t one : item_types) {
            if (vehicle_items(unit, one, count).empty())
                continue;
            known[one] = true;
            if (!can)
                known[std::uint8_t(one - 1)] = true;
        }
        bytes out{0x49, type};
        if (!can)
            out.push_back(0x01);
        return append_support(out, type, known) ? messages{std::move(out)} : messages{};
    }
    const bool asks_count = !can && type % 2 == 1;
    const bytes items = vehicle_items(unit, std::uint8_t(asks_count ? type + 1 : type), count);
    if (items.empty())
        return {};
    if (can) {
        bytes out{0x49, type, count};
        out.insert(out.end(), items.begin(), items.end());
        return {std::move(out)};
    }
    const std::size_t total = (items.size() + 3) / 4;
    if (asks_count)
        return {bytes{0x49, type, std::uint8_t(total)}};
    bytes padded(total * 4 - items.size(), 0x00);
    padded.insert(padded.end(), items.begin(), items.end());
    messages all;
    for (std::size_t i = 0; i < total; ++i) {
        bytes out{0x49, type, std::uint8_t(i + 1)};
        out.insert(out.end(), padded.begin() + std::ptrdiff_t(i * 4),
                   padded.begin() + std::ptrdiff_t(i * 4 + 4));
        all.push_back(std::move(out));
    }
    return all;
}

messages data_by_identifier(const ecu& unit, request_bytes request) {
    if (request.size() != 3)
        return {};
    const auto found = unit.data.find(std::uint16_t(request[1] << 8 | request[2]));
    if (found == unit.data.end())
        return {};
    bytes out{0x62, request[1], request[2]};
    out.insert(out.end(), found->second.begin(), found->second.end());
    return {std::move(out)};
}

messages positive(const ecu& unit, request_bytes request, const circumstances& at) {
    switch (request[0]) {
    case 0x01: return current_data(unit, request, at);
    case 0x02: return frozen_data(unit, request, at);
    case 0x03: return request.size() == 1 ? trouble_codes(0x43, unit.codes, at.can) : messages{};
    case 0x06:
        if (request.size() < 2)
            return {};
        return at.can ? monitors_can(unit, request) : monitors_legacy(unit, request);
    case 0x07: return request.size() == 1 ? trouble_codes(0x47, unit.pending, at.can) : messages{};
    case 0x09: return vehicle_information(unit, request, at.can);
    case 0x0A: // permanent codes came with CAN
        return request.size() == 1 && at.can ? trouble_codes(0x4A, unit.permanent, true) : messages{};
    case 0x22: return data_by_identifier(unit, request);
    default: return {};
    }
}

} // namespace

messages messages_for(const ecu& unit, request_bytes request, const circumstances& at) {
    messages found = positive(unit, request, at);
    if (!found.empty())
        return found;
    for (const refusal& refused : unit.refusals)
        if (!refused.service || *refused.service == request[0])
            return {bytes{0x7F, request[0], refused.code}};
    return {};
}

} // namespace virtual_adapter
