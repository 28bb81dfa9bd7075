#pragma once

#include "base/user_defaults.h"
#include "link/adapter_link.h"
#include "toolkit/mac_toolies.h"

namespace brivant {

// What the General tab of the preferences edits.
struct general_settings {
    QString link;                             // a USB or LE adapter, which goes first, or "any"; "" for none
    int interface_kind = interface_bluetooth; // or interface_wifi
    QString wifi_ip;
    QString wifi_port;
    bool metric_units = false;
    bool log_runs = false;
    bool time_stamps = false;
    int sample_rate = -1;   // seconds, -1 as fast as available
    int sampling_speed = 0; // see setting::sampling_speed
    bool standard_reading = false;
    bool anonymous = false;
    bool store_position = true;
};

// Checks and stores the settings, and puts them into force. All that it is given outlives it.
class preferences {
public:
    preferences(user_defaults& settings, adapter_place& its_place, adapter_link& its_link,
                mac_toolies& its_toolies);

    general_settings stored() const;

    // True when storing it closes an open link and sends the next one elsewhere.
    bool changes_link(const general_settings& chosen) const;
    // Stores what differs from what is stored; an address or port that is wrong, or not in use, stays as it
    // was. When the kind of link, the address or the port changes, an open link is closed and the next one
    // goes to the new place. A link chosen on the command line stays in force while these three are left
    // alone. False when the settings file cannot be written.
    bool store(const general_settings& chosen);
    // Stores the first values of every setting. False as above.
    bool restore_first_values();

    // What is wrong with a typed text, as a sentence; "" when it is good.
    static QString address_problem(const QString& address);
    static QString port_problem(const QString& port);

private:
    void store_link(const general_settings& chosen);
    void put_in_force(const general_settings& before);

    user_defaults& defaults;
    adapter_place& place;
    adapter_link& link;
    mac_toolies& toolies;
};

} // namespace brivant
