#pragma once

#include "link/adapter_address.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace brivant {

// What the command line of brivant-lite or brivant-cli asks for.
struct launch_options {
    enum class link_choice { as_stored, given, find, demo, simulate };

    link_choice link = link_choice::as_stored;
    adapter_address address;                    // that was given
    QString demo_car = QStringLiteral("can11"); // a name or a file
    QString profile;
    bool json = false;
    bool yes = false;
    std::optional<bool> metric;
    bool standard_reading = false; // results as SAE J1979 reads the replies
    bool anonymous = false;        // no VIN in what goes to others
    bool help = false;
    bool version = false;
    bool log = false;      // results are stored, whatever the preference says
    bool as_text = false;  // an export ends in ".txt"
    QString format;        // of an export: "timed"; "" for the program's own
    QString command;       // the terminal program's; "" for none
    QStringList arguments; // the words after the command
};

// The options of the words after the program's name, or nothing and a sentence in `problem` when they are
// wrong.
std::optional<launch_options> parse_launch_options(const QStringList& arguments, QString& problem);

// The lines of a usage text that tell the options both programs know.
QString launch_options_usage();

} // namespace brivant
