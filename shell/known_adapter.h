#pragma once

#include "link/adapter_address.h"

#include <QDate>
#include <QList>
#include <QStringList>

namespace brivant {

// An adapter that was used on this computer, or that the person has named.
struct known_adapter {
    adapter_address where;
    QString name;                // the person's, else what the device calls itself; "" for neither
    bool is_named = false;       // by the person
    QString greeting;            // what it says that it is: "ELM327 v1.5"; "" while not known
    QDate last_used;             // invalid: never
    QList<int> vehicles;         // that prefer it
    bool falls_at_reset = false; // it takes its link away with "AT Z"

    bool operator==(const known_adapter&) const = default;

    // Its name, else its address.
    QString called() const { return name.isEmpty() ? where.where : name; }
};

// "Bluetooth", "Bluetooth LE", "USB", "Wi-Fi", "Stand-in".
QString word_of_link(int kind);

// One line of text; nothing is made of a line with anything wrong in it.
QString line_of(const known_adapter& one);
std::optional<known_adapter> known_adapter_of_line(const QString& line);

// The adapters of lines, the one used last first; each address once.
QList<known_adapter> known_adapters_in(const QStringList& lines);
// As many as are kept.
QStringList lines_of(const QList<known_adapter>& adapters);

// What a name given by the person becomes: one line of bounded length.
QString cleaned_name(const QString& typed);

} // namespace brivant
