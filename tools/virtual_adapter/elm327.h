#pragma once

#include "tools/virtual_adapter/car.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace virtual_adapter {

struct adapter_options {
    std::string banner = "ELM327 v1.5";
    int stored_protocol = 0; // 0 or the number that "AT SP" would have stored
    bool stored_automatic = true;
    bool pad_single_frames = false; // CAN frames with headers are shown with all eight bytes
};

// One command and what it yields, both in the bytes that the link carries.
struct exchange {
    std::string command; // upper case, without blanks
    std::string echo;    // the command as received and a line end; empty with the echo off
    std::string reply;   // lines and prompt
};

// The command interpreter of one adapter on a car: characters in, replies out, no time passing in between.
class elm327 {
public:
    explicit elm327(std::shared_ptr<car> on, adapter_options options = {});

    // One character from the link. NUL and LF are ignored; a return completes the command and yields its
    // exchange. A bare return repeats the command before.
    std::optional<exchange> take(char character);

    // Everything that those characters yield, echo included.
    std::string receive(std::string_view characters);

    // Commands (upper case, without blanks) that this adapter does not know although a better one would.
    void refuse(const std::vector<std::string>& commands) {
        m_refused.insert(m_refused.end(), commands.begin(), commands.end());
    }

    // The reply to a character that arrives while a request is being answered.
    std::string stopped() const;

private:
    std::string carry_out(const std::string& command);

    // at_commands.cpp
    std::string at_command(std::string_view command); // without the leading "AT"
    bool change_setting(std::string_view command);
    bool set_protocol(std::string_view number, bool store);
    std::string protocol_name() const;
    std::string protocol_number() const;
    void reset();

    // obd_request.cpp
    std::string obd_request(std::string_view digits);
    bool connect(std::string& out);
    bool wake_up_bus(std::string& out);

    void append_line(std::string& out, std::string_view text) const;
    std::string reply(std::string_view text) const; // one line and the prompt

    std::shared_ptr<car> m_car;
    adapter_options m_options;
    std::vector<std::string> m_refused;

    std::string m_received; // the command so far, as it came
    std::string m_last;     // repeated by a bare return

    bool m_echo = true;
    bool m_headers = false;
    bool m_spaces = true;
    bool m_linefeeds = false;
    int m_protocol = 0; // 0 until one is chosen or found
    bool m_automatic = true;
    bool m_established = false; // the car has answered in m_protocol, or the protocol is fixed
    bool m_connected = false;   // the bus is awake
};

} // namespace virtual_adapter
