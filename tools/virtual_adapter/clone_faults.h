#pragma once

#include "tools/virtual_adapter/car.h"

#include <string>
#include <string_view>
#include <vector>

namespace virtual_adapter {

// What cheap copies of the chip do wrong with what only fast clients ask for. A group is a request of service
// 01 for more than one PID.
struct clone_faults {
    bool hangs_on_groups = false;  // of more than two PIDs: not a word from then on
    bool refuses_count = false;    // "?" to the digit behind a request
    bool turns_groups = false;     // their PIDs come in the opposite order
    bool drops_one = false;        // the second PID of a group
    bool cuts_groups = false;      // answers to them end after seven bytes
    bool has_small_buffer = false; // answers end behind 36 lines (255 bytes of one ECU) with BUFFER FULL
    bool says_ok_to_all = false;   // to AT commands that it does not know, too
    std::vector<std::string> ignored =
        {}; // beginnings of AT commands (without AT) answered OK, without effect

    // The fault that the command line knows by that name; false when there is none.
    bool add(std::string_view name);
    static std::vector<std::string_view> names();

    bool hangs_at(const bytes& request) const {
        return hangs_on_groups && is_group(request) && request.size() > 3;
    }
    bool ignores(std::string_view at_command) const;
    void change_request(bytes& request) const;
    void change_answers(const bytes& request, std::vector<answer>& answers) const;

private:
    static bool is_group(const bytes& request) { return request.size() > 2 && request[0] == 0x01; }
};

} // namespace virtual_adapter
