#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace brivant {

// The records that travel between the floors.

// One line of a reply: the header text that the adapter shows before the data, and the rest of the
// line, both hex characters without blanks. On CAN the body begins with the ISO 15765-2 control byte;
// on the older protocols it ends with the check byte. Both are empty while the protocol is unknown.
struct obd_message {
    QString header;
    QString body;
    bool operator==(const obd_message&) const = default;
};

// One ECU: its header, and what belongs to it: message bodies, trouble codes or supported PIDs.
struct obd_group {
    QString header;
    QStringList pidSet;
    bool operator==(const obd_group&) const = default;
};

using obd_messages = QList<obd_message>;
using obd_groups = QList<obd_group>;

// A reply as it came and how the adapter showed it: what either reading takes apart in its own way.
struct raw_reply {
    QString text;
    int protocol = -1; // the adapter's number from "AT DPN", -1 while unknown
    bool headers_shown = false;
};

enum class unit_system { metric, imperial };

// The reply that stands for the absence of a usable reply, and the text of a value that is not available.
inline const QString no_reply = QStringLiteral("~");
inline const QString not_available = QStringLiteral("N/A");

} // namespace brivant
