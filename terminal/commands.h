#pragma once

#include "diagnostics/readCodes.h"

#include <QJsonObject>
#include <span>

namespace brivant {

// One command of the terminal program: what it starts, and how its result reads.
struct cli_command {
    const char* name;
    const char* help;
    void (*start)(readCodes& controller);
    QJsonObject (*as_json)(readCodes& controller);
    QString (*as_text)(readCodes& controller);
};

std::span<const cli_command> cli_commands();
const cli_command* find_command(const QString& name);

} // namespace brivant
