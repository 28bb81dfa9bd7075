#include "position/gpsd_place.h"

#include <QHostAddress>
#include <algorithm>

namespace brivant {

namespace {

bool is_name(const QString& host) {
    return !host.isEmpty() && std::all_of(host.begin(), host.end(), [](QChar c) {
        return (c.unicode() < 0x80 && c.isLetterOrNumber()) || QStringLiteral(".-_").contains(c);
    });
}

} // namespace

std::optional<gpsd_place> gpsd_place::of(const QString& text) {
    const qsizetype colon = text.lastIndexOf(u':');
    bool is_number = false;
    const QString digits = text.mid(colon + 1);
    const quint16 port = digits.toUShort(&is_number);
    if (colon < 0 || !is_number || port == 0 || !digits.front().isDigit())
        return std::nullopt;
    QString host = text.left(colon);
    if (!host.startsWith(u'[') || !host.endsWith(u']'))
        return is_name(host) ? std::optional(gpsd_place{host, port}) : std::nullopt;
    host = host.sliced(1).chopped(1);
    const bool is_ipv6 = QHostAddress(host).protocol() == QAbstractSocket::IPv6Protocol;
    return is_ipv6 ? std::optional(gpsd_place{host, port}) : std::nullopt;
}

} // namespace brivant
