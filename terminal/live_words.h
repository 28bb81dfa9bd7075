#pragma once

#include "livedata/store_trigger.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace brivant {

// What the words behind "log", "fuel", "boost" or "o2" ask for.
struct live_words {
    int mode = 0;            // by its place among the modes of the live-data screen
    QStringList pids;        // "0C"; empty for the vehicle's own choice
    qint64 sweeps = -1;      // the run ends behind so many, -1 for none
    int seconds = -1;        // it ends that long after the first value, -1 for none
    std::optional<int> rate; // seconds between stored sweeps
    std::optional<store_trigger> trigger;
    int speed = 0;      // as the setting has it
    bool store = false; // whatever the preference says
};

bool is_live_command(const QString& command);
// Nothing, and a sentence in `problem`, for words that are wrong.
std::optional<live_words> parse_live_words(const QString& command, const QStringList& words,
                                           QString& problem);
// The lines of the usage text.
QString live_commands_usage();

} // namespace brivant
