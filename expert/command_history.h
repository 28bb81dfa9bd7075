#pragma once

#include "base/user_defaults.h"

namespace brivant {

// The commands that were typed, for going back to them: the last 100, kept in the user defaults. A command
// that stands in it already moves to its end. The defaults outlive it.
class command_history {
public:
    static constexpr qsizetype most_commands = 100;

    explicit command_history(user_defaults& settings);

    void add(const QString& command);
    // The command before or after the one shown, for a line of input that holds `typed`. What was typed comes
    // back behind the newest command. Nothing further gives `typed` itself.
    QString older(const QString& typed);
    QString newer(const QString& typed);

private:
    user_defaults& defaults;
    QStringList commands; // the oldest first
    qsizetype place = 0;  // of the one shown; commands.size() for what was typed
    QString draft;
};

} // namespace brivant
