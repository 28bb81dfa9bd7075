#include "tools/virtual_adapter/elm327.h"

#include "tools/virtual_adapter/hex_digit.h"

namespace virtual_adapter {

namespace {

constexpr std::string_view device_description = "OBDII to RS232 Interpreter";

} // namespace

// Every command that the adapter knows; the others are answered "?".
std::string elm327::at_command(std::string_view command) {
    if (command == "Z" || command == "WS") {
        reset();
        return reply(m_options.banner).insert(0, "\r\r");
    }
    if (command == "I")
        return reply(m_options.banner);
    if (command == "@1")
        return reply(device_description);
    if (command == "DP")
        return reply(protocol_name());
    if (command == "DPN")
        return reply(protocol_number());
    if (command == "RV") {
        const int tenths = m_car->description().battery_tenths;
        return reply(std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + 'V');
    }
    return reply(change_setting(command) ? "OK" : "?");
}

// False for what is not a setting. Time-outs, memory, long messages and formatting are taken and change
// nothing: nothing here takes time, and every other form is the only one.
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
    if (command.size() == 4 && command.starts_with("ST"))
        return hex_digit(command[2]) >= 0 && hex_digit(command[3]) >= 0;
    if (command == "AL" || command == "CAF1" || command == "AT0" || command == "AT1" || command == "AT2")
        return true;
    if (command.size() != 2 || (command[1] != '0' && command[1] != '1'))
        return false;
    const bool on = command[1] == '1';
    switch (command[0]) {
    case 'E': m_echo = on; return true;
    case 'H': m_headers = on; return true;
    case 'S': m_spaces = on; return true;
    case 'L': m_linefeeds = on; return true;
    case 'M': return true;
    default: return false;
    }
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
    m_echo = true;
    m_headers = false;
    m_spaces = true;
    m_linefeeds = false;
    m_protocol = m_options.stored_protocol;
    m_automatic = m_options.stored_automatic || m_protocol == 0;
    m_established = !m_automatic;
    m_connected = false;
}

} // namespace virtual_adapter
