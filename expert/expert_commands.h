#pragma once

#include "base/user_defaults.h"

#include <QStringList>
#include <optional>

namespace brivant {

// What is known about commands before they are sent.

// Why a typed command cannot be sent, as a sentence; "" when it can. Only printable ASCII characters and at
// most 250 of them are sent: an adapter takes a line end within the text for the end of the command.
QString command_problem(const QString& command);

// What a command changes in the car or the adapter for good, as a part of a sentence ("clears the trouble
// codes ..."); "" for one that does not. Adapters ignore blanks and do not tell upper from lower case, so
// neither matters.
QString permanent_change(const QString& command);

// One command, sent again and again with a byte that counts up. The values are those of a console that has no
// script yet.
struct expert_script {
    static constexpr int longest_command = 20; // bytes, its "\r" among them
    static constexpr int most_loops = 9999;

    QString obdCmd_script = QStringLiteral("01 {L}"); // the template: "{L}" stands for the byte
    QString fromByte_script = QStringLiteral("09");   // hexadecimal
    QString toByte_script = QStringLiteral("0C");
    int no_of_loops_script = 1;

    // The template with the byte in it, without its "\r".
    QString command(int byte) const;
    int first_byte() const;
    // The last byte of a pass, which is the first one when To lies below From.
    int last_byte() const;
    int commands_in_all() const { return (last_byte() - first_byte() + 1) * no_of_loops_script; }
};

// The script of four texts: template, from, to, number of loops. Nothing when one of them is wrong:
// `problems` then holds a sentence in the place of each that is, and "" in the others.
std::optional<expert_script> check_script(const QStringList& values, QStringList& problems);

// The four texts that the script dialog shows: those stored last.
QStringList stored_script(const user_defaults& defaults);
void store_script(user_defaults& defaults, const QStringList& values);

} // namespace brivant
