#include "tools/virtual_adapter/elm327.h"

#include "tools/virtual_adapter/bus_time.h"
#include "tools/virtual_adapter/hex_digit.h"

namespace virtual_adapter {

namespace {
constexpr std::size_t lines_of_small_buffer = 36;
}

bool append_bytes(bytes& out, std::string_view digits) {
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const std::optional<std::uint32_t> value = hex_number(digits.substr(i, 2));
        if (!value)
            return false;
        out.push_back(std::uint8_t(*value));
    }
    return true;
}

// A single digit behind the bytes is the number of frames to wait for; 0 or none waits for all.
std::string elm327::obd_command(std::string_view digits) {
    obd_request request;
    if (digits.size() % 2 == 1) {
        const int count = hex_digit(digits.back());
        if (count < 0 || m_clone.refuses_count)
            return reply("?");
        if (count > 0)
            request.most_frames = std::size_t(count);
        digits.remove_suffix(1);
    }
    return append_bytes(request.data, digits) ? ask_car(request) : reply("?");
}

std::string elm327::ask_car(const obd_request& request) {
    if (m_hangs = m_clone.hangs_at(request.data); m_hangs)
        return {};
    // A frame has eight bytes; one of them is the length, which the adapter puts in front or the client.
    if (request.data.empty() || request.data.size() > (m_settings.formats_can ? 7u : 8u))
        return reply("?");
    std::string out;
    out.reserve(128);
    if (connect(out)) {
        const listening::outcome came = m_listening.hear(
            {answers_to(request), request.data.size(), request.most_frames, double(request.wait_ms)}, *m_car,
            m_settings, m_now_ms);
        std::size_t lines = 0;
        for (const arrival& received : came.heard) {
            if (m_clone.has_small_buffer && lines++ == lines_of_small_buffer) {
                append_line(out, "BUFFER FULL");
                break;
            }
            append_frame(out, received.what, m_car->network().kind, style());
            print(out, received.at_ms + (m_options.time ? m_options.time->line_ms : 0));
        }
        m_now_ms = came.end_ms;
        if (came.heard.empty())
            append_line(out, "NO DATA");
    }
    append_line(out, {});
    out += '>';
    return out;
}

answers_to_a_request elm327::answers_to(const obd_request& request) {
    const bus kind = m_car->network().kind;
    const addressee to = request.header.value_or(m_settings.header).addressed(kind);
    bytes sent = request.data;
    m_clone.change_request(sent);
    std::span<const std::uint8_t> asked = sent;
    if (is_can(kind) && !m_settings.formats_can) {
        const std::size_t length = asked[0]; // of a single frame; others begin with a higher digit
        if (length > 7 || length >= asked.size())
            return std::make_shared<std::vector<answer>>();
        asked = asked.subspan(1, length);
    }
    std::vector<answer> answers = m_car->ask(asked, to);
    m_clone.change_answers(request.data, answers);
    return std::make_shared<std::vector<answer>>(std::move(answers));
}

frame_style elm327::style() const {
    return {.headers = m_settings.headers,
            .spaces = m_settings.spaces,
            .linefeeds = m_settings.linefeeds,
            .formatted = m_settings.formats_can,
            .pad_single_frames = m_options.pad_single_frames || m_car->description().pads_single_frames,
            .padding = m_car->description().padding};
}

// Makes contact before the first request; true when the car can be asked. What a person sees of it goes to
// `out`.
bool elm327::connect(std::string& out) {
    if (!m_established) {
        append_line(out, "SEARCHING...");
        print(out, m_now_ms);
        pass(search_ms);
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
    pass(wake_up_ms(wanted));
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
