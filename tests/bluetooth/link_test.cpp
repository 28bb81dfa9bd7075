#include "tests/bluetooth/stand_in.h"
#include "tests/link/link_bench.h"

namespace brivant {

// The link with the real transport below it; its time passes by hand.

namespace {

class bluetooth_channel : public testing::Test {
protected:
    stand_in service;
    adapter_place place;
    adapter_facts facts;
    hand_timers clock;
    recording_screen view;
    adapter_link link{place, facts, clock, view, make_transport};
    recording_controller operation{link, view};

    bluetooth_channel() { link.set_controller(&operation); }
    ~bluetooth_channel() override { link.set_controller(nullptr); }
    QString failed() const { return fill(localised("TOAST_BT_CONN_FAILED"), {"OBDII"}).replace('\n', "\\n"); }
};

} // namespace

TEST_F(bluetooth_channel, a_device_that_says_nothing_is_given_up_after_twenty_seconds) {
    service.fault("ConnectProfile", "silence");
    link.choose_bluetooth_device();
    view.choose(obd_address, "OBDII");
    EXPECT_TRUE(wait_until([&] { return service.call("profiles") == 1; }));
    clock.advance(19999);
    EXPECT_TRUE(link.is_opening());
    EXPECT_TRUE(view.last("toast").contains("adapter OBDII does not answer. Still trying, second 19 of 20"));
    clock.advance(1);
    EXPECT_FALSE(link.is_opening());
    EXPECT_EQ(view.last("sound"), "1");
    EXPECT_EQ(view.last("status"), failed());
    EXPECT_EQ(view.last("toast"), failed());
    EXPECT_TRUE(view.last("choose").startsWith("OBDII did not answer"));
    clock.advance(1700);
    EXPECT_EQ(view.last("toast"), "");
    EXPECT_TRUE(wait_until([&] { return service.call("profiles") == 0; }));

    service.fault("ConnectProfile", "");
    view.choose(obd_address, "OBDII");
    EXPECT_TRUE(wait_until([&] { return link.is_connected(); }));
    service.call("answer_late", {"org.bluez.Error.Failed"}); // to the first attempt
    link.sendOBDcmd("AT I\r");
    EXPECT_TRUE(wait_until([&] { return operation.heard.join(' ').contains("ELM327"); }));
}

} // namespace brivant
