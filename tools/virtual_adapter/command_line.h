#pragma once

#include "tools/virtual_adapter/faults.h"

#include <QHostAddress>
#include <QString>
#include <QStringList>

namespace virtual_adapter {

// What the command line of the program asks for.
struct wishes {
    QString mistake;         // why the command line cannot be used; empty when it can
    QString print_and_leave; // help, version or list of cars; empty to serve
    QHostAddress address;
    quint16 port = 0;
    bool pty = false;  // in place of address and port
    int pty_speed = 0; // 0: any will do
    QString car;
    bool still = false;
    bool log = false;
    bool shows_ceiling = false;
    std::vector<std::uint8_t> ceiling_of;
    adapter_options options;
    faults what;
};

// `arguments` begin with the name of the program.
wishes read_command_line(const QStringList& arguments);

} // namespace virtual_adapter
