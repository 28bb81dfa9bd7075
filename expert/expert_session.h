#pragma once

#include "expert/command_history.h"
#include "expert/transcript.h"

namespace brivant {

// What the expert console keeps while other screens are shown, from the start of the program to its end.
struct expert_session {
    explicit expert_session(user_defaults& settings) : history(settings) {}

    transcript lines;
    command_history history;
    bool warned = false; // the person has agreed once to a change for good
};

} // namespace brivant
