#include "shell/adapter_list.h"
#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

// The adapters that are known, and which of them is in force.

namespace {

class listed_adapters : public testing::Test, protected adapter_bench {
protected:
    adapter_list list{profile.defaults, place, link, state};
    const adapter_address wifi = *adapter_address::of("wifi:10.0.0.5:35000");
    const adapter_address cable = *adapter_address::of("usb:/dev/serial/by-id/usb-FTDI");
    const adapter_address stick = *adapter_address::of("ble:00:1D:A5:68:98:8B");

    // As after a start of the program.
    QString read_again() {
        place = adapter_place();
        list.read_place();
        return place.now().text();
    }
    QString all() {
        QStringList texts;
        for (const known_adapter& one : list.known())
            texts += one.called() + (one.greeting.isEmpty() ? "" : " is " + one.greeting);
        return texts.join(", ");
    }
};

} // namespace

TEST_F(listed_adapters, the_one_in_force_is_stored_in_its_way) {
    EXPECT_TRUE(list.use(cable, "FT232R"));
    EXPECT_EQ(profile.defaults.value(setting::link), cable.text());
    EXPECT_FALSE(profile.defaults.has(setting::interface_kind)); // it knows Bluetooth and Wi-Fi only
    EXPECT_EQ(read_again(), cable.text());
    EXPECT_EQ(place.device_called(), "FT232R");
    list.use(wifi, "");
    EXPECT_EQ(read_again(), wifi.text());
    EXPECT_EQ(profile.defaults.value(setting::link), "");
    list.use(*adapter_address::of("bluetooth:00:1D:A5:68:98:8C"), "OBDII");
    EXPECT_EQ(read_again(), "bluetooth:00:1D:A5:68:98:8C");
    EXPECT_EQ(all(), "FT232R, 10.0.0.5, OBDII");
    profile.defaults.set(setting::link, "usb:/etc/passwd"); // edited by hand
    EXPECT_EQ(read_again(), "bluetooth:00:1D:A5:68:98:8C");
}

TEST_F(listed_adapters, what_was_used_is_remembered_with_what_it_is) {
    list.use(cable, "FT232R");
    link.openInterfaceConnection();
    place.take_speed(115200);
    link.describe_interface("ELM327 v1.5");
    link.adapter_is_set_up();
    list.use(stick, "V-LINK");
    EXPECT_FALSE(link.is_connected()); // it led to another one
    EXPECT_EQ(all(), "FT232R is ELM327 v1.5, V-LINK");
    EXPECT_EQ(list.with(cable)->last_used, QDate::currentDate());
    EXPECT_EQ(list.with(cable)->where.number, 115200);
    list.rename(cable, "  Garage\ncable\x1b ");
    link.openInterfaceConnection();
    EXPECT_EQ(list.named("garage CABLE")->where.key(), cable.key());
    list.use(cable, "FT232R"); // the person's name stays
    EXPECT_EQ(all(), "Garage cable is ELM327 v1.5, V-LINK");
    list.forget(stick);
    EXPECT_EQ(all(), "Garage cable is ELM327 v1.5");
    QStringList lines = profile.defaults.value(setting::known_adapters);
    lines += {"",
              "{}",
              "[1]",
              R"({"where":"usb:/etc/passwd"})",
              lines.first(),
              QString(5000, 'x'),
              R"({"where":"wifi:a:1","name":"two\nlines"})",
              R"({"where":"wifi:a:1","vehicles":[-1]})"};
    EXPECT_EQ(lines_of(known_adapters_in(lines)), lines.first(1));
}

TEST_F(listed_adapters, one_that_falls_at_its_reset_is_known_at_the_next_start) {
    list.use(wifi, "");
    link.openInterfaceConnection();
    link.do_not_reset(); // it was found out
    link.adapter_is_set_up();
    EXPECT_TRUE(list.with(wifi)->falls_at_reset);
    adapter_link of_the_next_day{place, found_out, clock, view, [this](const adapter_place&) {
                                     return std::make_unique<scripted_transport>(written, true);
                                 }};
    adapter_list again{profile.defaults, place, of_the_next_day, state};
    EXPECT_TRUE(of_the_next_day.may_be_reset());
    of_the_next_day.openInterfaceConnection();
    EXPECT_FALSE(of_the_next_day.may_be_reset());
}

TEST_F(listed_adapters, a_vehicle_may_prefer_one) {
    list.use(wifi, "");
    list.use(cable, "");
    list.prefer(wifi, state.cur_veh_id(), true);
    link.openInterfaceConnection();
    EXPECT_EQ(place.now(), wifi);
    link.disconnect();
    list.prefer(cable, state.cur_veh_id(), true); // in its place
    link.openInterfaceConnection();
    EXPECT_EQ(place.now(), cable);
    link.disconnect();
    list.prefer(cable, state.cur_veh_id(), false);
    list.use(stick, "");
    link.openInterfaceConnection();
    EXPECT_EQ(place.now(), stick);
    link.disconnect();
    list.prefer(wifi, state.cur_veh_id(), true);
    list.place_is_given(false); // on the command line
    link.openInterfaceConnection();
    EXPECT_EQ(place.now(), stick);
}

TEST_F(listed_adapters, whatever_is_there) {
    for (const adapter_address& one : {wifi, cable, stick})
        list.use(one, "");
    list.use_any();
    EXPECT_TRUE(list.takes_any());
    EXPECT_EQ(link.lead_before_opening().size(), 3);
    list.use(cable, "");
    EXPECT_FALSE(list.takes_any());
}

} // namespace brivant
