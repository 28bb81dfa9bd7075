#pragma once

#include "link/adapter_finder.h"
#include "link/serial_ports.h"
#include "shell/adapter_list.h"

namespace brivant {

// A row of the list of links: an adapter that is known, or a place where one may be.
struct link_row {
    adapter_address where;
    QString name;             // its own or the person's, else its address
    QString what;             // what it is, as far as that is known
    QString state;            // "in use", "plugged in", "answers" ...
    QString last_used;        // a date, or ""
    QList<int> vehicles;      // that prefer it
    bool is_in_force = false; // the link goes there
    bool is_known = false;    // it was used or named
    bool is_likely = false;   // it is known, has answered, or has what adapters have
};

// What there is to see from here.
struct links_around {
    std::vector<serial_port> ports;
    QList<bluetooth_device> devices;
    QList<probed_adapter> answers;
};

// The one in force first, then known ones, then others that are likely, then the rest; each place once.
// `passports`: see setting::adapter_passports.
QList<link_row> link_rows(const adapter_list& adapters, const adapter_link& link,
                          const QStringList& passports, const links_around& around);

} // namespace brivant
