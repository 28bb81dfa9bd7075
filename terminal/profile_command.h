#pragma once

#include "shell/Bv_lite_delegate.h"
#include "shell/program_core.h"

#include <QJsonObject>

namespace brivant {

// The commands "vehicles" and "settings", which work on the person's files and ask no car.

struct profile_context {
    program_core& core;
    Bv_lite_delegate& delegate;
    mac_toolies& toolies;
};

struct command_result {
    QString text;
    QJsonObject json;
    QString problem; // why it was not carried out; "" when it was
};

// Why the words after the command cannot be carried out, "" when they can.
QString wrong_profile_words(const QString& command, const QStringList& words, bool yes);
bool is_profile_command(const QString& command);
// Carries out the command of the options and prints its result. The exit status: 0 done, 1 failed.
int run_profile_command(program_core& core);

// vehicles list|add|edit|delete|use
QString wrong_vehicles_words(const QStringList& words, bool yes);
command_result run_vehicles(const profile_context& context, const QStringList& words);
// settings get|set
QString wrong_settings_words(const QStringList& words);
command_result run_settings(const profile_context& context, const QStringList& words);

} // namespace brivant
