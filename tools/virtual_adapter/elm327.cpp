#include "tools/virtual_adapter/elm327.h"

#include <algorithm>
#include <utility>

namespace virtual_adapter {

namespace {

constexpr std::size_t longest_command = 128;
constexpr std::string_view unknown = "?";

// Upper case, blanks and control characters dropped.
std::string normalised(std::string_view received) {
    std::string made;
    made.reserve(received.size());
    for (const char c : received)
        if (static_cast<unsigned char>(c) > ' ')
            made += c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
    return made;
}

} // namespace

elm327::elm327(std::shared_ptr<car> on, adapter_options options)
    : m_car(std::move(on)), m_options(std::move(options)), m_listening(m_options.time) {
    refuse(m_car->description().adapter_refuses);
    reset();
}

std::optional<exchange> elm327::take(char character, double at_ms) {
    if (character == '\0' || character == '\n')
        return std::nullopt;
    if (character != '\r') {
        if (m_received.size() <= longest_command)
            m_received += character;
        return std::nullopt;
    }
    exchange done;
    done.received_ms = at_ms;
    m_now_ms = std::max(m_now_ms, at_ms);
    if (m_options.time)
        pass(m_options.time->command_ms);
    if (m_settings.echo && !m_hangs) {
        done.echo = m_received;
        append_line_end(done.echo, m_settings.linefeeds);
    }
    const bool too_long = m_received.size() > longest_command;
    done.command = normalised(m_received);
    m_received.clear();
    if (done.command.empty())
        done.command = m_last;
    if (!m_hangs)
        done.reply = too_long ? reply(unknown) : carry_out(done.command);
    if (m_hangs)
        done.reply.clear();
    m_last = done.command;
    print(done.reply, m_now_ms);
    done.parts = std::exchange(m_parts, {});
    return done;
}

std::string elm327::receive(std::string_view characters) {
    std::string out;
    for (const char c : characters)
        if (const std::optional<exchange> done = take(c))
            out += done->echo + done->reply;
    return out;
}

std::string elm327::carry_out(const std::string& command) {
    if (std::find(m_refused.begin(), m_refused.end(), command) != m_refused.end())
        return reply(unknown);
    if (command.starts_with("AT"))
        return at_command(std::string_view(command).substr(2));
    if (command.starts_with("ST") && !m_options.st_identity.empty())
        return st_command(std::string_view(command).substr(2));
    return obd_command(command);
}

exchange elm327::stopped(double at_ms) {
    exchange done;
    done.received_ms = m_now_ms = at_ms;
    done.reply = reply("STOPPED");
    print(done.reply, m_now_ms);
    done.parts = std::exchange(m_parts, {});
    return done;
}

void elm327::pass(double milliseconds) {
    if (m_options.time)
        m_now_ms += milliseconds;
}

void elm327::print(const std::string& out, double at_ms) {
    if (m_options.time)
        m_parts.push_back({at_ms, out.size()});
}

void elm327::append_line(std::string& out, std::string_view text) const {
    out += text;
    append_line_end(out, m_settings.linefeeds);
}

std::string elm327::reply(std::string_view text) const {
    std::string out;
    append_line(out, text);
    append_line(out, {});
    out += '>';
    return out;
}

} // namespace virtual_adapter
