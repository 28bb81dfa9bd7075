#include "tools/virtual_adapter/elm327.h"

#include "tools/virtual_adapter/chip_versions.h"
#include "tools/virtual_adapter/hex_digit.h"

namespace virtual_adapter {

// Every command that the adapter knows; the others are answered "?".
std::string elm327::at_command(std::string_view command) {
    if (m_clone.ignores(command))
        return reply("OK");
    if (command == "Z" || command == "WS") {
        reset();
        if (m_options.time)
            pass(m_options.time->reset_ms);
        return reply(m_options.banner).insert(0, "\r\r");
    }
    if (command == "I")
        return reply(m_options.banner);
    if (command == "@1")
        return reply(m_options.description);
    if (command == "DP")
        return reply(protocol_name());
    if (command == "DPN")
        return reply(protocol_number());
    if (command == "RV") {
        const int tenths = m_car->description().battery_tenths;
        return reply(std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + 'V');
    }
    if (change_setting(command))
        return reply("OK");
    if (const char* answer = answer_by_version(command, m_options.commands_of))
        return reply(answer);
    return reply(m_clone.says_ok_to_all ? "OK" : "?");
}

// False for what is not a setting. Memory and long messages are taken and change nothing: every other form is
// the only one.
bool elm327::change_setting(std::string_view command) {
    if (command == "D") {
        reset();
        return true;
    }
    if (command == "PC") {
        m_connected = false;
        return true;
    }
    if (command.starts_with("SP") || command.starts_with("TP"))
        return set_protocol(command.substr(2), command.front() == 'S');
    if (command == "AL")
        return true;
    return change_number(command) || change_switch(command) || m_settings.receives.change(command);
}

bool elm327::change_number(std::string_view command) {
    if (command.starts_with("SH"))
        return m_settings.header.set(command.substr(2));
    const std::optional<std::uint32_t> number =
        command.size() == 4 ? hex_number(command.substr(2)) : std::nullopt;
    if (command == "AT0" || command == "AT1" || command == "AT2") {
        m_settings.adaptive = command[2] - '0';
    } else if (number && command.starts_with("ST")) {
        m_settings.wait_units = *number == 0 ? usual_wait_units : int(*number);
        m_settings.wait_ms = 0;
    } else if (number && command.starts_with("CP")) {
        m_settings.header.priority = std::uint8_t(*number & 0x1F);
    } else {
        return false;
    }
    return true;
}

// A name and 0 or 1.
bool elm327::change_switch(std::string_view command) {
    if (command.empty() || (command.back() != '0' && command.back() != '1'))
        return false;
    const struct {
        std::string_view name;
        bool* setting;
    } switches[] = {
        {"E", &m_settings.echo},
        {"H", &m_settings.headers},
        {"S", &m_settings.spaces},
        {"L", &m_settings.linefeeds},
        {"CAF", &m_settings.formats_can},
        {"CFC", &m_settings.controls_flow},
        {"M", nullptr},
    };
    for (const auto& known : switches) {
        if (command.substr(0, command.size() - 1) != known.name)
            continue;
        if (known.setting != nullptr)
            *known.setting = command.back() == '1';
        return true;
    }
    return false;
}

// "6" fixes a protocol, "A6" and "6A" begin the search with it, "0" searches through all.
bool elm327::set_protocol(std::string_view number, bool store) {
    bool automatic = false;
    if (number.size() == 2 && (number[0] == 'A' || number[1] == 'A')) {
        automatic = true;
        number = number.substr(number[0] == 'A' ? 1 : 0, 1);
    }
    const int value = number.size() == 1 ? hex_digit(number[0]) : -1;
    if (value != 0 && find_protocol(value) == nullptr)
        return false;
    m_protocol = value;
    m_automatic = automatic || value == 0;
    m_established = !m_automatic;
    m_connected = false;
    m_listening.forget();
    if (store) {
        m_options.stored_protocol = m_protocol;
        m_options.stored_automatic = m_automatic;
    }
    return true;
}

std::string elm327::protocol_name() const {
    const protocol* known = find_protocol(m_protocol);
    if (known == nullptr)
        return "AUTO";
    std::string name = m_automatic ? "AUTO, " : "";
    return name += known->name;
}

std::string elm327::protocol_number() const {
    std::string number = m_automatic ? "A" : "";
    return number += "0123456789ABC"[m_protocol];
}

void elm327::reset() {
    m_settings = {};
    m_listening.forget();
    m_protocol = m_options.stored_protocol;
    m_automatic = m_options.stored_automatic || m_protocol == 0;
    m_established = !m_automatic;
    m_connected = false;
}

} // namespace virtual_adapter
