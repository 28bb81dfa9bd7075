#pragma once

#include <QString>

namespace brivant {

// Why the serial port at that path could not be opened, and what mends it, as far as the system tells.
// `reason`: what the attempt was told.
QString why_port_did_not_open(const QString& path, const QString& reason);

} // namespace brivant
