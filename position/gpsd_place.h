#pragma once

#include <QString>
#include <optional>

namespace brivant {

// Where gpsd answers, as the setting has it.
struct gpsd_place {
    QString host;
    quint16 port = 0;

    // Of "localhost:2947", "192.168.0.20:2947" or "[fe80::1%eth0]:2947"; nothing for another text.
    static std::optional<gpsd_place> of(const QString& text);
};

} // namespace brivant
