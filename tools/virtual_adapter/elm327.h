#pragma once

#include "tools/virtual_adapter/adapter_settings.h"
#include "tools/virtual_adapter/car.h"
#include "tools/virtual_adapter/clone_faults.h"
#include "tools/virtual_adapter/listening.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace virtual_adapter {

struct adapter_options {
    std::string banner = "ELM327 v1.5";
    double commands_of = 1.42;                              // what it knows: see chip_versions
    std::string description = "OBDII to RS232 Interpreter"; // what "AT @1" answers
    std::string st_identity = {}; // what "STI" answers; empty: an adapter without ST commands
    int stored_protocol = 0;      // 0 or the number that "AT SP" would have stored
    bool stored_automatic = true;
    bool pad_single_frames = false;  // CAN frames with headers are shown with all eight bytes
    std::optional<timing> time = {}; // none: nothing takes any
};

// One command and what it yields, both in the bytes that the link carries.
struct exchange {
    std::string command; // upper case, without blanks
    std::string echo;    // the command as received and a line end; empty with the echo off
    std::string reply;   // lines and prompt; nothing from a chip that hangs

    // When the command was there, and when its reply goes out as far as that place in it; nothing without
    // timing.
    struct part {
        double at_ms = 0;
        std::size_t end = 0;
    };
    double received_ms = 0;
    std::vector<part> parts = {};
};

// What is sent to the car, and for how long the adapter listens.
struct obd_request {
    bytes data;
    std::size_t most_frames = SIZE_MAX;   // that are waited for
    std::optional<request_header> header; // none: as it is set
    int wait_ms = 0;                      // 0: as it is set
};

// Appends the bytes of an even number of characters. False when one of them is no hexadecimal digit.
bool append_bytes(bytes& out, std::string_view digits);

// The command interpreter of one adapter on a car: characters in, replies out. Time is what it is told:
// nothing here waits for it.
class elm327 {
public:
    explicit elm327(std::shared_ptr<car> on, adapter_options options = {});

    // One character from the link. NUL and LF are ignored; a return completes the command and yields its
    // exchange. A bare return repeats the command before. `at_ms` is when the character is there.
    std::optional<exchange> take(char character, double at_ms = 0);

    // Everything that those characters yield, echo included.
    std::string receive(std::string_view characters);

    // Commands (upper case, without blanks) that this adapter does not know although a better one would.
    void refuse(const std::vector<std::string>& commands) {
        m_refused.insert(m_refused.end(), commands.begin(), commands.end());
    }

    // Makes it the copy that it is.
    void suffer(const clone_faults& what) { m_clone = what; }

    // The reply to a character that arrives while a request is being answered.
    exchange stopped(double at_ms = 0);

private:
    std::string carry_out(const std::string& command);

    // at_commands.cpp
    std::string at_command(std::string_view command); // without the leading "AT"
    bool change_setting(std::string_view command);
    bool change_number(std::string_view command);
    bool change_switch(std::string_view command);
    bool set_protocol(std::string_view number, bool store);
    std::string protocol_name() const;
    std::string protocol_number() const;
    void reset();

    // stn_commands.cpp
    std::string st_command(std::string_view command); // without the leading "ST"

    // obd_request.cpp
    std::string obd_command(std::string_view digits);
    std::string ask_car(const obd_request& request);
    answers_to_a_request answers_to(const obd_request& request);
    frame_style style() const;
    void pass(double milliseconds);                   // time, where there is any
    void print(const std::string& out, double at_ms); // what is in `out` so far goes out then
    bool connect(std::string& out);
    bool wake_up_bus(std::string& out);

    void append_line(std::string& out, std::string_view text) const;
    std::string reply(std::string_view text) const; // one line and the prompt

    std::shared_ptr<car> m_car;
    adapter_options m_options;
    std::vector<std::string> m_refused;
    clone_faults m_clone;
    bool m_hangs = false;
    listening m_listening;
    double m_now_ms = 0;                 // what the adapter has come to
    std::vector<exchange::part> m_parts; // of the reply under way

    std::string m_received; // the command so far, as it came
    std::string m_last;     // repeated by a bare return

    adapter_settings m_settings;
    int m_protocol = 0; // 0 until one is chosen or found
    bool m_automatic = true;
    bool m_established = false; // the car has answered in m_protocol, or the protocol is fixed
    bool m_connected = false;   // the bus is awake
};

} // namespace virtual_adapter
