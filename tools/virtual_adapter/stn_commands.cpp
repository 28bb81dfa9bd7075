#include "tools/virtual_adapter/elm327.h"

#include "tools/virtual_adapter/hex_digit.h"

#include <algorithm>
#include <charconv>

namespace virtual_adapter {

namespace {

// A decimal number from 1 to 65535; 0 for any other text.
int counted(std::string_view text) {
    std::uint16_t value = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    return problem == std::errc{} && end == text.data() + text.size() ? value : 0;
}

// "H:7E0,D:010C,R:1,T:100" in any order; only D must be there. Nothing when a part makes no sense.
std::optional<obd_request> arbitrary_request(std::string_view parts) {
    obd_request made;
    while (!parts.empty()) {
        const std::size_t comma = std::min(parts.find(','), parts.size());
        const std::string_view part = parts.substr(0, comma);
        parts.remove_prefix(std::min(comma + 1, parts.size()));
        if (part.size() < 3 || part[1] != ':')
            return std::nullopt;
        const std::string_view value = part.substr(2);
        bool good = true;
        switch (part[0]) {
        case 'H': good = made.header.emplace().set(value); break;
        case 'D': good = value.size() % 2 == 0 && append_bytes(made.data, value); break;
        case 'R':
            made.most_frames = std::size_t(counted(value));
            good = made.most_frames > 0;
            break;
        case 'T':
            made.wait_ms = counted(value);
            good = made.wait_ms > 0;
            break;
        default: return std::nullopt;
        }
        if (!good)
            return std::nullopt;
    }
    return made;
}

} // namespace

// Without the leading "ST".
std::string elm327::st_command(std::string_view command) {
    if (command == "I")
        return reply(m_options.st_identity);
    if (command.starts_with("PTO")) {
        const int milliseconds = counted(command.substr(3));
        if (milliseconds > 0)
            m_settings.wait_ms = milliseconds;
        return reply(milliseconds > 0 ? "OK" : "?");
    }
    if (command.starts_with("PX"))
        if (const std::optional<obd_request> request = arbitrary_request(command.substr(2)))
            return ask_car(*request);
    return reply("?");
}

} // namespace virtual_adapter
