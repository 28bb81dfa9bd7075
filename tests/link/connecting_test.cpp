#include "link/bluetooth_transport.h"
#include "link/simulated_adapter.h"
#include "tests/link/link_bench.h"

namespace brivant {

// Opening and losing the link.

TEST_F(link_test, the_first_task_starts_once_0_8_s_after_opening) {
    EXPECT_FALSE(link.openInterfaceConnection());
    EXPECT_EQ(view.events.join(", "), "status: Trying: 192.168.0.10:35000 , toast: Trying: "
                                      "192.168.0.10:35000 \\n\\nMake sure you connected "
                                      "to your\\n OBD WiFi interface beforehand , status: TCP Connected!! "
                                      "... Sending intial request, toast: ");
    EXPECT_FALSE(link.openInterfaceConnection()); // open, but its task has not started
    clock.advance(799);
    EXPECT_EQ(heard(), "");
    clock.advance(1);
    EXPECT_EQ(heard(), "work");
    EXPECT_TRUE(link.openInterfaceConnection());
    clock.advance(60000);
    EXPECT_EQ(heard(), "");
    EXPECT_EQ(adapter->attempts, 1);
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(link_test, the_first_task_does_not_start_on_a_link_that_is_gone) {
    link.openInterfaceConnection();
    adapter->break_off();
    clock.advance(1000);
    EXPECT_EQ(heard(), "leave");
    EXPECT_EQ(view.last("status"), "Disconnected");
}

TEST_F(link_test, the_watchdog_waits_twenty_seconds) {
    opens_at_once = false;
    link.openInterfaceConnection();
    for (int tick = 1; tick <= 19; ++tick) {
        view.events.clear();
        EXPECT_FALSE(link.openInterfaceConnection()); // an attempt is under way
        clock.advance(1000);
        QString text;
        if (tick >= 7)
            text = fill(localised("TOAST_WIFI_NOT_RESP_RETRY"),
                        {"192.168.0.10", "35000", QString::number(tick), "20"});
        if (tick >= 15)
            text += "\n\n" + localised("TOAST_SOME_VEH_RUNNG");
        EXPECT_EQ(view.last("toast"), text.replace('\n', "\\n")) << tick;
        EXPECT_EQ(view.last("status"), text) << tick;
        EXPECT_EQ(heard(), "");
    }
    EXPECT_EQ(adapter->attempts, 1);
    view.events.clear();
    clock.advance(1000);
    const QString failed = localised("TOAST_WIFI_CONN_FAILED").replace('\n', "\\n");
    EXPECT_EQ(view.events.first(), "sound: 1");
    EXPECT_EQ(view.last("toast"), failed);
    EXPECT_EQ(view.last("status"), failed);
    EXPECT_EQ(heard(), "leave");
    EXPECT_FALSE(link.is_opening());
    clock.advance(1699);
    EXPECT_EQ(view.last("toast"), failed);
    clock.advance(1);
    EXPECT_EQ(view.last("toast"), "");
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(link_test, a_refused_connection_is_tried_again_each_second) {
    opens_at_once = false;
    link.openInterfaceConnection();
    for (int attempt = 1; attempt < 4; ++attempt) {
        EXPECT_EQ(adapter->attempts, attempt);
        adapter->refuse("no one there");
        EXPECT_EQ(view.last("status"), "Couldn't connect...Please Check\\n\\nno one there");
        EXPECT_TRUE(link.is_opening()); // it is tried for
        EXPECT_FALSE(link.openInterfaceConnection());
        clock.advance(1000);
    }
    adapter->finish_opening();
    clock.advance(800);
    EXPECT_EQ(heard(), "work");
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(link_test, a_new_operation_while_opening_is_watched_too) {
    opens_at_once = false;
    link.openInterfaceConnection();
    link.stop_timers(); // the operation before was left
    link.openInterfaceConnection();
    clock.advance(20000);
    EXPECT_EQ(view.events.count("sound: 1"), 1);
    link.openInterfaceConnection();
    clock.advance(1700); // the clearing of the old notice does not clear the new one
    EXPECT_TRUE(view.last("toast").startsWith("Trying"));
    adapter->refuse("no one there");
    bool shown_opening = true;
    QObject::connect(&link, &adapter_link::condition_changed, [&] { shown_opening = link.is_opening(); });
    link.stop_timers(); // the operation is left between two tries
    EXPECT_FALSE(link.is_opening() || shown_opening);
    link.stop_opening();
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(link_test, a_link_lost_forgets_the_adapter) {
    for (const char* how : {"closed", "failed", "disconnect"}) {
        open();
        found_out.ready = found_out.known = found_out.headers = true;
        found_out.protocol = 6;
        ask("AT I", "ELM");
        adapter->receive("half a rep");
        if (*how == 'f')
            Q_EMIT adapter->failed("cable cut");
        if (*how == 'd')
            link.disconnect();
        else
            adapter->break_off();
        EXPECT_FALSE(link.is_connected()) << how;
        EXPECT_FALSE(found_out.ready || found_out.known || found_out.headers) << how;
        EXPECT_EQ(found_out.protocol, -1) << how;
        EXPECT_EQ(clock.running(), 0u) << how;
        if (*how == 'd')
            continue;
        EXPECT_EQ(heard(), "leave") << how;
        EXPECT_EQ(view.last("status"), "Disconnected");
        EXPECT_TRUE(view.last("message").startsWith("The adapter closed the connection"));
    }
    open();
    Q_EMIT adapter->read_failed("bad cable");
    EXPECT_EQ(view.last("status"), "Failed receiving data [ bad cable ]");
    EXPECT_TRUE(link.is_connected());
}

TEST_F(link_test, the_kinds_of_link) {
    place.choose(interface_bluetooth);
    EXPECT_TRUE(dynamic_cast<bluetooth_transport*>(make_transport(place).get()));
    place.choose(interface_simulated);
    EXPECT_TRUE(dynamic_cast<simulated_adapter*>(make_transport(place).get()));
    open();
    place.choose(interface_wifi); // another kind was chosen: the old link goes
    EXPECT_FALSE(link.openInterfaceConnection());
    EXPECT_EQ(adapter->attempts, 1);
    clock.advance(800);
    EXPECT_EQ(heard(), "work");
}

TEST(simulated_adapter, knows_a_command_as_a_whole) {
    simulated_adapter adapter;
    QString received;
    QObject::connect(&adapter, &transport::OBDevent, [&](const QString& text) { received += text; });
    adapter.open();
    adapter.write("03\r");
    EXPECT_EQ(std::exchange(received, {}), "43 04 10 00 00 00 00\r43 04 17 00 00 00 00\r\r>");
    for (const char* command : {"03", "AT Z", "ATZ\r", "at z\r", "AT DPN\r", ""}) {
        adapter.write(command);
        EXPECT_EQ(std::exchange(received, {}), "?\r\r>") << command;
    }
}

} // namespace brivant
