#pragma once

#include "tools/virtual_adapter/elm327.h"

namespace virtual_adapter {

// What goes wrong on one connection. Commands, replies and lines are counted from 1 for each connection; 0
// never happens.
struct faults {
    int delay_ms = 0;   // the adapter works that long on each request; characters meanwhile interrupt it
    bool split = false; // every byte is its own write
    int glue_reply = 0; // this reply is held back and sent in one write with the next
    int lose_line = 0;  // this line of text is lost
    int lose_every = 0; // every so many-th line is lost
    std::string garbage_before = {};
    std::string garbage_inside = {}; // in the middle of the reply
    int garbage_every = 1;           // only in every so many-th reply
    bool garbage_spares_at = false;  // not in replies to AT commands
    int late_reply = 0; // this reply and what follows it are held up on the way, without interruption
    int late_ms = 0;
    int silent_from = 0;                    // this command and all later ones get no answer
    int cut_after = 0;                      // the link closes behind the answer to this command
    std::vector<std::string> refused = {};  // commands (upper case, without blanks) answered "?"
    bool reset_closes = false;              // AT Z closes the link
    std::vector<std::string> hangs_on = {}; // commands (as above) after which it is silent on this link
    clone_faults clone = {};
};

// What the link does about one command.
struct delivery {
    std::string at_once; // sent before any waiting
    double at_ms = 0;    // not before that moment, where the adapter has timing
    int wait_ms = 0;
    bool interruptible = false; // by characters that arrive during the wait
    std::string text;           // sent after the wait
    bool close = false;         // then
};

// Turns the exchanges of one connection into deliveries.
class fault_line {
public:
    explicit fault_line(faults what) : m_faults(std::move(what)) {}

    delivery pass(const exchange& done);
    const faults& what() const { return m_faults; }

private:
    std::string without_lost_lines(const std::string& reply);
    std::string with_garbage(std::string reply) const;

    faults m_faults;
    int m_commands = 0;
    int m_lines = 0;
    bool m_hangs = false;
    std::string m_held;
};

} // namespace virtual_adapter
