#pragma once

#include "link/adapter_link.h"
#include "tests/support/hand_timers.h"
#include "tests/support/recording_screen.h"
#include "tests/support/scripted_transport.h"
#include "tests/support/temporary_profile.h"
#include "toolkit/mac_toolies.h"

#include <QMap>

namespace brivant {

// What a test tells about an adapter itself.
struct told_facts : adapter_facts {
    using adapter_facts::headers, adapter_facts::known, adapter_facts::protocol, adapter_facts::ready;
};

// A link to a scripted adapter, with everything below a controller, the first vehicle current.
struct adapter_bench {
    temporary_profile profile;
    adapter_place place;
    told_facts found_out;
    car_state state;
    hand_timers clock;
    recording_screen view;
    QStringList written; // every command sent, without its "\r"
    scripted_transport* adapter = nullptr;
    bool opens_at_once = true;
    adapter_link link{place, found_out, clock, view, [this](const adapter_place&) {
                          auto made = std::make_unique<scripted_transport>(written, opens_at_once);
                          adapter = made.get();
                          return made;
                      }};
    mac_toolies toolies{found_out, state, profile.defaults, profile.db};

    // What a conversation may do ("! do read-codes"), and what it may ask ("= codes P0133|7E8").
    QMap<QString, std::function<void(const QString&)>> actions;
    QMap<QString, std::function<QString()>> facts;

    adapter_bench();
};

// The ECUs with their PIDs, "7E8 01 03, 7E9 01", and back.
QString text_of(const obd_groups& ecus);
obd_groups ecus_of(const QString& text);

} // namespace brivant
