#include "link/adapter_search.h"
#include "tests/link/link_bench.h"

#include <QCoreApplication>
#include <QEvent>

namespace brivant {

// Where an adapter is, and who answers there.

TEST(adapter_address, is_written_and_read_again) {
    for (const char* text : {"wifi:192.168.0.10:35000", "wifi:[fe80::1%wlan0]:23", "wifi:adapter.local:1",
                             "bluetooth:00:1D:A5:68:98:8B", "ble:00:1D:A5:68:98:8B",
                             "usb:/dev/ttyUSB0:115200", "usb:/dev/serial/by-id/usb-FTDI_FT232R_A1-if00-port0",
                             "usb:/dev/serial/by-path/pci-0:0:1.0-port0"}) {
        const auto address = adapter_address::of(text);
        ASSERT_TRUE(address) << text;
        EXPECT_EQ(address->text(), text);
    }
    EXPECT_EQ(adapter_address::of("usb:/dev/ttyUSB0:115200")->key(), "/dev/ttyUSB0");
    for (const char* wrong : {"", "usb", "usb:", "usb:ttyUSB0", "usb:/etc/passwd", "usb:/dev/../etc/passwd",
                              "usb:/dev/a b", "wifi:", "wifi:host", "wifi:host:0", "wifi:host:65536",
                              "wifi::1", "wifi:a b:1", "ble:1:2", "ble:usb:/dev/x", "simulated:1", "any"})
        EXPECT_FALSE(adapter_address::of(wrong)) << wrong;
}

TEST(greeting_in, tells_an_adapter_from_others) {
    const std::pair<const char*, const char*> adapters[] = {
        {"ELM327 v1.5\r\r>", "ELM327 v1.5"},
        {"AT I\rELM327 v2.1\r\r>", "ELM327 v2.1"},
        {"ATI\r\nOBDII v1.5\r\n\r\n>", "OBDII v1.5"},
        {"ELM327 v1.5\r\r>ELM327 v1.5\r\r>", "ELM327 v1.5"}, // asked twice
        {"\r\r>STN1110 v4.0.1\r\r>", "STN1110 v4.0.1"},      // behind what it was asked before
    };
    for (const auto& [heard, greeting] : adapters) {
        EXPECT_EQ(greeting_in(heard).value_or("none"), greeting) << heard;
    }
    EXPECT_EQ(greeting_in(QString::fromLatin1("\0ELM327\0 v1.4b\r\r>", 17)).value_or("none"), "ELM327 v1.4b");
    for (const char* other :
         {"", ">", "\r>", "AT I\r", "AT I\r>", "ELM327 v1.5\r\r", "?\r\r>",
          "HTTP/1.1 400 Bad Request\r\nServer: x\r\n\r\n<html><h1>400</h1>\r\n</html>",
          "HTTP/1.1 400 Bad Request\r\n\r\n<p>400\r\n>", "SSH-2.0-OpenSSH_9.2\r\n",
          "220 mail.example ESMTP\r\n500 5.5.1 unknown\r\n", "login: ", "router1>", "sh: AT: not found\r\n$ ",
          "Unknown command: AT I\r\n1 error\r\n>", "{\"error\":1}\r\n>",
          "a line 1 that is far too long to be the name that an adapter gives itself\r>"})
        EXPECT_FALSE(greeting_in(other)) << other;
}

namespace {

// Places that answer, each in its way.
class places_around : public testing::Test {
protected:
    hand_timers clock;
    QStringList written, opened; // by kind and address
    QMap<QString, scripted_transport*> at;
    adapter_search search{[this](const adapter_place& place) {
                              auto made = std::make_unique<scripted_transport>(written, false);
                              opened += place.now().text();
                              at[place.now().text()] = made.get();
                              return made;
                          },
                          clock};
    QStringList answers;
    bool over = false;

    places_around() {
        QObject::connect(&search, &adapter_search::answered, [this](const probed_adapter& one) {
            answers += one.where.text() + " " + (one.is_adapter() ? one.greeting : one.problem);
        });
        QObject::connect(&search, &adapter_search::finished, [this] { over = true; });
    }
    void ask(const QString& place) { search.add({*adapter_address::of(place), QString()}); }
    void answer(const QString& place, const QString& text) {
        at[place]->finish_opening();
        at[place]->receive(text);
        clock.advance(0);
    }
};

} // namespace

TEST_F(places_around, are_asked_at_once_and_judged_each) {
    for (const char* place : {"wifi:a:1", "wifi:b:1", "usb:/dev/x", "wifi:c:1", "wifi:a:1"})
        ask(place);
    EXPECT_EQ(opened.size(), 4); // one of them was named twice
    answer("wifi:b:1", "HTTP/1.1 400 Bad Request\r\n");
    answer("usb:/dev/x", "ELM327 v1.5\r\r>");
    EXPECT_EQ(written.count("AT I"), 2);
    at["wifi:c:1"]->refuse("Connection refused");
    clock.advance(0);
    EXPECT_EQ(answers.join(", "), "usb:/dev/x ELM327 v1.5, wifi:c:1 Connection refused");
    clock.advance(2999);
    EXPECT_FALSE(over);
    clock.advance(1);
    EXPECT_EQ(answers.mid(2).join(", "),
              "wifi:a:1 Nothing answers there., wifi:b:1 What answers there is no adapter.");
    EXPECT_TRUE(over);
    EXPECT_EQ(search.adapters().size(), 1);
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(places_around, those_of_the_radio_are_called_one_after_the_other) {
    ask("bluetooth:00:00:00:00:00:01");
    ask("ble:00:00:00:00:00:02");
    EXPECT_EQ(opened.size(), 1);
    at[opened.first()]->finish_opening();
    clock.advance(1000); // it was not listening yet
    EXPECT_EQ(written.join(", "), "AT I, AT I");
    at[opened.first()]->break_off();
    clock.advance(0);
    EXPECT_EQ(opened.size(), 2);
    search.stop();
    EXPECT_FALSE(search.is_running());
    clock.advance(60000);
    EXPECT_EQ(answers.join(""), "bluetooth:00:00:00:00:00:01 It closed the connection.");
}

TEST(gateway_in, reads_the_kernels_table) {
    EXPECT_EQ(gateway_in("Iface\tDestination\tGateway \tFlags\n"
                         "wlan0\t0000A8C0\t00000000\t0001\nwlan0\t00000000\t0A00A8C0\t0003\n"),
              "192.168.0.10"); // as a little-endian machine writes it
    for (const char* without : {"", "Iface\n", "wlan0 00000000\n", "wlan0\t00000000\tXYZ\t0003\n",
                                "tun0\t00000000\t00000000\t0001\n"})
        EXPECT_EQ(gateway_in(without), "") << without;
}

// An operation over whatever adapter is there.
TEST_F(link_test, takes_the_first_of_its_adapters_that_answers) {
    opens_at_once = false;
    link.lead_before_opening = [] {
        return QList<adapter_search::candidate>{{*adapter_address::of("usb:/dev/x"), "Cable"},
                                                {*adapter_address::of("ble:00:00:00:00:00:01"), "Stick"}};
    };
    EXPECT_FALSE(link.openInterfaceConnection());
    EXPECT_EQ(view.last("status"), "Looking for one of your adapters: Cable, Stick");
    EXPECT_TRUE(link.is_opening());
    adapter->finish_opening(); // the stick; the cable is silent
    adapter->receive("ELM327 v1.5\r\r>");
    clock.advance(0);
    EXPECT_EQ(place.now().text(), "ble:00:00:00:00:00:01");
    EXPECT_EQ(view.last("status"), "Connecting to:Stick");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    adapter->finish_opening();
    EXPECT_EQ(heard(), "work");
    EXPECT_EQ(view.last("status"), "Connected to Stick");

    link.disconnect();
    link.openInterfaceConnection();
    clock.advance(60000);
    EXPECT_EQ(heard(), "leave");
    EXPECT_TRUE(view.last("message").contains("None of your adapters answers"));
    link.openInterfaceConnection();
    link.stop_opening();
    EXPECT_FALSE(link.is_opening());
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(link_test, a_usb_or_le_adapter_is_opened_as_a_device) {
    opens_at_once = false;
    for (const char* where : {"usb:/dev/x", "ble:00:00:00:00:00:01"}) {
        place.choose(*adapter_address::of(where), "Cable");
        EXPECT_FALSE(link.openInterfaceConnection());
        adapter->finish_opening();
        EXPECT_EQ(heard(), "work") << where; // at once
        adapter->break_off();
        EXPECT_EQ(view.last("status"), "Connection to Cable lost");
        EXPECT_EQ(heard(), "leave");
        link.openInterfaceConnection();
        adapter->refuse("It is not plugged in.");
        EXPECT_EQ(view.last("message"), "It is not plugged in."); // told at once, and left
        EXPECT_EQ(heard(), "leave");
        EXPECT_FALSE(link.is_opening());
        EXPECT_EQ(clock.running(), 0u);
    }
}

TEST_F(link_test, a_usb_adapter_that_resets_its_port_is_waited_for) {
    place.choose(*adapter_address::of("usb:/dev/x"), "Cable");
    link.openInterfaceConnection();
    set_up("AT Z");
    opens_at_once = adapter->opens_at_once = false;
    adapter->break_off();
    clock.advance(1000);
    for (int second = 0; second < 3; ++second) {
        adapter->refuse("It is not plugged in.");
        EXPECT_TRUE(link.is_opening());
        clock.advance(1000);
    }
    heard();
    adapter->finish_opening();
    EXPECT_EQ(heard(), "work");
    EXPECT_FALSE(link.may_be_reset());
}

} // namespace brivant
