#include "tests/link/link_bench.h"

namespace brivant {

// The link over Bluetooth: which device it goes to, what is shown, and when the task starts. The channel
// itself is played by the test.

namespace {

class bluetooth_link : public link_test {
protected:
    const QString address = "AA:BB:CC:DD:EE:01";
    QStringList remembered;

    bluetooth_link() {
        place.choose(interface_bluetooth);
        opens_at_once = false;
        QObject::connect(&link, &adapter_link::device_taken,
                         [this] { remembered += place.bt_address() + " " + place.last_BT_Device(); });
    }
    void know_device() { place.take_device(address, "OBDII"); }
    // What was shown since the last call, joined by ", ".
    QString shown() { return std::exchange(view.events, {}).join(", "); }
};

} // namespace

TEST_F(bluetooth_link, asks_for_the_device_and_starts_the_task_when_its_channel_opens) {
    EXPECT_FALSE(link.openInterfaceConnection());
    EXPECT_FALSE(link.openInterfaceConnection()); // it is asking already
    EXPECT_EQ(shown(), "choose: ");
    view.choose(address, "OBDII");
    EXPECT_EQ(shown(),
              "status: Connecting to:OBDII, toast: Connecting to:OBDII\\n\\nMake sure you are connecting to "
              "your\\n OBD Bluetooth interface ");
    EXPECT_TRUE(link.is_opening());
    EXPECT_FALSE(link.openInterfaceConnection());
    EXPECT_EQ(heard(), "");
    EXPECT_EQ(remembered.join(", "), "");
    found_out.headers = true; // from another adapter
    adapter->finish_opening();
    EXPECT_EQ(shown(), "status: BT Connected, status: BT Connected!!, toast: ");
    EXPECT_EQ(heard(), "work"); // at once, and once
    EXPECT_EQ(remembered.join(", "), "AA:BB:CC:DD:EE:01 OBDII");
    EXPECT_FALSE(found_out.headers);
    EXPECT_TRUE(link.openInterfaceConnection());
    EXPECT_EQ(adapter->attempts, 1);
    EXPECT_EQ(clock.running(), 0u);

    link.disconnect();
    EXPECT_FALSE(link.openInterfaceConnection()); // the device is known now
    EXPECT_TRUE(shown().startsWith("status: Connecting to:OBDII"));
}

TEST_F(bluetooth_link, no_device_chosen_ends_the_operation) {
    link.openInterfaceConnection();
    view.choose("", "");
    EXPECT_EQ(heard(), "leave");
    EXPECT_EQ(shown(), "choose: ");

    link.openInterfaceConnection();
    link.stop_opening(); // the operation was stopped while the list was up
    view.choose(address, "OBDII");
    EXPECT_FALSE(link.is_opening());
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(bluetooth_link, a_device_that_refuses_is_asked_about) {
    know_device();
    link.openInterfaceConnection();
    adapter->refuse("OBDII could not be reached.");
    EXPECT_EQ(view.last("choose"), "OBDII could not be reached.");
    EXPECT_EQ(view.last("toast"), "");
    EXPECT_EQ(heard(), ""); // the operation waits for the answer
    EXPECT_EQ(clock.running(), 0u);
    view.choose("AA:BB:CC:DD:EE:02", "Other");
    adapter->finish_opening();
    EXPECT_EQ(heard(), "work");
    EXPECT_EQ(remembered.join(", "), "AA:BB:CC:DD:EE:02 Other");

    link.disconnect();
    link.openInterfaceConnection();
    adapter->refuse("No.");
    view.choose("", "");
    EXPECT_EQ(heard(), "leave");
    EXPECT_EQ(view.last("status"), "Connection to BT lost");
}

TEST_F(bluetooth_link, a_lost_channel_ends_the_operation) {
    know_device();
    for (const bool working : {false, true}) {
        link.openInterfaceConnection();
        adapter->finish_opening();
        forget();
        found_out.ready = found_out.known = true;
        if (working)
            ask("AT I", "ELM");
        adapter->break_off();
        EXPECT_EQ(heard(), "leave");
        EXPECT_EQ(view.last("status"), "Connection to BT lost");
        EXPECT_EQ(!view.last("message").isEmpty(), working);
        EXPECT_FALSE(found_out.ready || found_out.known);
        EXPECT_EQ(clock.running(), 0u);
    }
}

TEST_F(bluetooth_link, another_device_is_one_choice_away) {
    know_device();
    link.choose_bluetooth_device();
    view.choose("", "");
    EXPECT_EQ(heard(), ""); // nothing was going on
    link.choose_bluetooth_device();
    view.choose(address, "OBDII");
    adapter->finish_opening();
    EXPECT_FALSE(heard().contains("work")); // no operation waits
    EXPECT_TRUE(link.openInterfaceConnection());
    ask("AT I", "ELM");

    link.choose_bluetooth_device(); // while an operation runs over the first
    view.choose(address, "OBDII");  // which is the one in use
    EXPECT_EQ(heard(), "");
    link.choose_bluetooth_device();
    EXPECT_TRUE(link.is_connected());
    view.choose("AA:BB:CC:DD:EE:02", "Other");
    EXPECT_EQ(heard(), "leave");
    EXPECT_TRUE(link.is_opening());
    link.openInterfaceConnection(); // and one that begins while it opens
    adapter->finish_opening();
    EXPECT_EQ(heard(), "work");
}

} // namespace brivant
