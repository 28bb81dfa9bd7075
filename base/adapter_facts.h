#pragma once

#include <QString>

namespace brivant {

// What is known of the adapter and of the link to it. The link alone writes it; all others read.
class adapter_facts {
public:
    // Initialised on this link.
    bool adapter_ready() const { return ready; }
    // It answered to a reset on this link: a reset is not needed again.
    bool adapter_known() const { return known; }
    // "AT H1" is in force.
    bool headers_shown() const { return headers; }
    // The number from "AT DPN", -1 while unknown.
    int cur_protocol() const { return protocol; }
    const QString& protocol_description() const { return protocol_text; }
    const QString& interface_description() const { return interface_text; }

protected: // not private for tests that stand in for the link
    friend class adapter_link;
    bool ready = false, known = false, headers = false;
    int protocol = -1;
    QString protocol_text, interface_text;
};

} // namespace brivant
