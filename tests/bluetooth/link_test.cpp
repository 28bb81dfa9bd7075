#include "link/adapter_link.h"
#include "tests/bluetooth/stand_in.h"
#include "tests/support/hand_timers.h"
#include "tests/support/recording_screen.h"

// The link with the real transport below it; the twenty seconds pass by hand.

TEST(bluetooth_channel, a_device_that_says_nothing_is_given_up_after_twenty_seconds) {
    stand_in service;
    process_state state;
    hand_timers clock;
    recording_screen view;
    adapter_link link(state, clock, view, make_transport);
    service.fault("ConnectProfile", "silence");
    link.choose_bluetooth_device();
    view.choose(obd_address, "OBDII");
    EXPECT_TRUE(wait_until([&] { return service.call("profiles") == 1; }));
    clock.advance(19999);
    EXPECT_TRUE(link.is_opening());
    clock.advance(1);
    EXPECT_FALSE(link.is_opening());
    EXPECT_EQ(view.last("sound"), "1");
    EXPECT_TRUE(view.last("choose").startsWith("OBDII did not answer"));
    EXPECT_TRUE(wait_until([&] { return service.call("profiles") == 0; }));

    service.fault("ConnectProfile", "");
    view.choose(obd_address, "OBDII");
    EXPECT_TRUE(wait_until([&] { return link.is_connected(); }));
    service.call("answer_late", {"org.bluez.Error.Failed"}); // to the first attempt
    link.sendOBDcmd("AT I\r");
    EXPECT_TRUE(wait_until([&] { return !state.rx_reply.is_empty(); }));
    EXPECT_TRUE(state.rx_reply.text().contains("ELM327")) << state.rx_reply.text().constData();
}
