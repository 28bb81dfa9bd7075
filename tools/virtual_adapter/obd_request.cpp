#include "tools/virtual_adapter/elm327.h"

#include "tools/virtual_adapter/framing.h"
#include "tools/virtual_adapter/hex_digit.h"

namespace virtual_adapter {

namespace {

constexpr std::size_t most_request_bytes = 7;

// False when the text, of an even number of characters, is anything but hexadecimal digits.
bool append_bytes(bytes& out, std::string_view digits) {
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = hex_digit(digits[i]);
        const int low = hex_digit(digits[i + 1]);
        if (high < 0 || low < 0)
            return false;
        out.push_back(std::uint8_t(high << 4 | low));
    }
    return true;
}

} // namespace

// A single digit behind the bytes is the number of frames to wait for; 0 or none waits for all.
std::string elm327::obd_request(std::string_view digits) {
    frame_style style;
    if (digits.size() % 2 == 1) {
        const int count = hex_digit(digits.back());
        if (count < 0)
            return reply("?");
        if (count > 0)
            style.most_lines = std::size_t(count);
        digits.remove_suffix(1);
    }
    bytes request;
    request.reserve(most_request_bytes);
    if (digits.empty() || digits.size() > most_request_bytes * 2 || !append_bytes(request, digits))
        return reply("?");

    std::string out;
    out.reserve(128);
    if (connect(out)) {
        const std::vector<answer> answers = m_car->ask(request);
        style.headers = m_headers;
        style.spaces = m_spaces;
        style.linefeeds = m_linefeeds;
        style.pad_single_frames = m_options.pad_single_frames || m_car->description().pads_single_frames;
        style.padding = m_car->description().padding;
        if (answers.empty())
            append_line(out, "NO DATA");
        else
            append_frames(out, answers, m_car->network().kind, style);
    }
    append_line(out, {});
    out += '>';
    return out;
}

// Makes contact before the first request; true when the car can be asked. What a person sees of it goes to
// `out`.
bool elm327::connect(std::string& out) {
    if (!m_established) {
        append_line(out, "SEARCHING...");
        if (!m_car->description().ignition) {
            append_line(out, "UNABLE TO CONNECT");
            return false;
        }
        m_protocol = m_car->network().number;
        m_established = m_connected = true;
    }
    if (!m_connected)
        m_connected = wake_up_bus(out);
    return m_connected;
}

bool elm327::wake_up_bus(std::string& out) {
    const protocol& wanted = *find_protocol(m_protocol);
    const protocol& network = m_car->network();
    const bool ignition = m_car->description().ignition;
    const bool reached = ignition && wanted.number == network.number;
    if (is_k_line(wanted.kind)) {
        // Dots stand for the seconds that the five-baud address takes.
        const std::string dots = wanted.slow_init ? "..." : "";
        append_line(out, "BUS INIT: " + dots + (reached ? "OK" : "ERROR"));
    } else if (!reached) {
        // On a CAN bus of another speed, or without a node, nobody acknowledges what is sent.
        const bool acknowledged = ignition && wanted.kbaud == network.kbaud;
        append_line(out, wanted.kbaud == 0 || acknowledged ? "NO DATA" : "CAN ERROR");
    }
    return reached;
}

} // namespace virtual_adapter
