#include "tools/virtual_adapter/elm327.h"

#include <algorithm>

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
    : m_car(std::move(on)), m_options(std::move(options)) {
    refuse(m_car->description().adapter_refuses);
    reset();
}

std::optional<exchange> elm327::take(char character) {
    if (character == '\0' || character == '\n')
        return std::nullopt;
    if (character != '\r') {
        if (m_received.size() <= longest_command)
            m_received += character;
        return std::nullopt;
    }
    exchange done;
    if (m_settings.echo) {
        done.echo = m_received;
        append_line_end(done.echo, m_settings.linefeeds);
    }
    const bool too_long = m_received.size() > longest_command;
    done.command = normalised(m_received);
    m_received.clear();
    if (done.command.empty())
        done.command = m_last;
    done.reply = too_long ? reply(unknown) : carry_out(done.command);
    m_last = done.command;
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

std::string elm327::stopped() const {
    return reply("STOPPED");
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
