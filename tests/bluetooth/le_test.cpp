#include "link/le_transport.h"
#include "tests/bluetooth/stand_in.h"

#include <QElapsedTimer>
#include <functional>

namespace brivant {

// The transport to a Bluetooth LE device with a Bluetooth service at the other end of the bus.

namespace {

class bluetooth_le : public testing::Test {
protected:
    stand_in service;
    adapter_place place;
    le_transport transport{place};
    QString received;
    QStringList events;
    QString reason;

    bluetooth_le() {
        place.choose({interface_le, le_address, 0}, "Adapter");
        service.call("set_port", {0}); // the test speaks for the adapter
        service.put_le();
        listen(transport);
    }
    void listen(le_transport& to) {
        QObject::connect(&to, &transport::opened, [this] { events += "opened"; });
        QObject::connect(&to, &transport::closed, [this] { events += "closed"; });
        QObject::connect(&to, &transport::OBDevent, [this](const QString& text) { received += text; });
        QObject::connect(&to, &transport::failed, [this](const QString& why) {
            events += "failed";
            reason = why;
        });
    }
    // What was told until something was, joined by " ".
    QString told() {
        wait_until([this] { return !events.isEmpty(); }, 15000);
        return std::exchange(events, {}).join(' ');
    }
    void say(const QByteArray& bytes) { service.call("notify", {bytes}); }
    bool arrives(const QString& text) {
        return wait_until([&] { return received == text; });
    }
    bool comes_to(const QString& state) {
        return wait_until([&] { return service.call("le_state", {le_address}) == state; });
    }
    QByteArray sent(qsizetype size) {
        QByteArray bytes;
        wait_until([&] { return (bytes += service.call("take_received").toByteArray()).size() >= size; });
        return bytes;
    }
    // A command goes there in those writes, and an answer comes back.
    void exchanges(const QByteArray& command, const QString& writes) {
        received.clear();
        service.call("take_received");
        service.call("take_writes");
        transport.write(command);
        EXPECT_EQ(sent(command.size()), command); // whole, in order, and no zero byte behind it
        EXPECT_EQ(service.call("take_writes"), writes);
        say("ELM327");
        say("\r\r>");
        EXPECT_TRUE(arrives("ELM327\r\r>")) << received.toStdString();
    }
    void works(const QString& writes = "command 5") {
        transport.open();
        EXPECT_EQ(told(), "opened") << reason.toStdString();
        exchanges("AT I\r", writes);
        transport.close();
        EXPECT_TRUE(comes_to(""));
        EXPECT_EQ(events.join(' '), ""); // one's own close is no news
    }
    std::function<void()> set(const char* method, const QVariantList& arguments = {}) {
        return [=, this] { service.call(method, arguments); };
    }
    std::function<void()> fault(const char* member, const char* error) {
        return [=, this] { service.fault(member, error); };
    }
};

const QByteArray long_command = "010C0D0405060B0F1011\r"; // 21 bytes

} // namespace

TEST_F(bluetooth_le, finds_the_port_of_each_kind_of_adapter) {
    const QString nordic = "6e40000%1-b5a3-f393-e0a9-e50e24dcca9e ",
                  isc = "49535343-fe7d-4ae5-8fa9-9fafd205e455 ";
    const QString vlink = "e7810a71-73ae-499d-8c15-faa9aef0c3f2 bef8d6c9-9c21-4c9e-b632-bd58c1009f9f ";
    const struct {
        QStringList characteristics;
        const char* behind; // the service that leads to the adapter
        int mtu;
        const char* writes; // of the long command
    } rows[] = {
        {{"fff0 fff1 notify", "fff0 fff2 write-without-response,write"}, "fff0", 23, "command 20, command 1"},
        {{"FFE0 FFE1 read,notify,write-without-response"}, "FFE0", 24, "command 21"},
        {{"18f0 2af1 write", "18f0 2af0 indicate"}, "18f0", 0, "request 20, request 1"},
        {{nordic.arg(1) + nordic.arg(3) + "notify", nordic.arg(1) + nordic.arg(2) + "write"},
         nullptr,
         247,
         "request 21"},
        {{isc + "49535343-1e4d-4bd9-ba61-23c647249616 write,notify",
          isc + "49535343-8841-43f4-a8d4-ecbe34729bb3 write,write-without-response"},
         nullptr,
         23,
         "command 20, command 1"},
        {{vlink + "notify,write"}, nullptr, 13, "request 10, request 10, request 1"},
        // Others notify too, and stand before it.
        {{"fef5 8082 notify,write", "1801 2a05 indicate", "18f0 2af0 notify", "18f0 2af1 write",
          "ffe0 ffe1 notify,write", "fff0 fff1 notify", "fff0 fff2 write"},
         "fff0",
         23,
         "request 20, request 1"},
        // A service of the table that cannot be used as the table has it.
        {{"fff0 fff1 read", "fff0 fff2 write", "18f0 2af1 write", "ffe0 ffe1 notify,write"},
         "ffe0",
         23,
         "request 20, request 1"},
    };
    for (const auto& row : rows) {
        service.put_le(row.characteristics, row.mtu);
        if (row.behind)
            service.set_le("behind", row.behind);
        transport.open();
        EXPECT_EQ(told(), "opened") << row.characteristics[0].toStdString() << reason.toStdString();
        EXPECT_TRUE(comes_to("connected notifying"));
        exchanges(long_command, row.writes);
        transport.close();
        EXPECT_TRUE(comes_to(""));
    }
    EXPECT_EQ(transport.far_end_name(), "IOS-Vlink");
}

TEST_F(bluetooth_le, carries_commands_and_replies) {
    service.put_le(stand_in::usual, 23, false); // it is not known: it is looked for
    bool has_radio = false;
    QObject::connect(&transport, &transport::radio_ready, [&] { has_radio = true; });
    transport.write("too early\r");
    transport.open();
    transport.open(); // no second connection
    EXPECT_EQ(transport.state(), transport::condition::opening);
    EXPECT_EQ(events.join(' '), ""); // nothing is told inside the call
    EXPECT_EQ(told(), "opened");
    EXPECT_TRUE(has_radio);
    EXPECT_FALSE(service.call("is_discovering").toBool());
    QByteArray many;
    for (int i = 0; i < 50; ++i) {
        many += "01 0C 0D " + QByteArray::number(i) + " \r";
        transport.write(many.last(many.size() - many.lastIndexOf("01 0C")));
    }
    EXPECT_EQ(sent(many.size()), many);
    say(QByteArray("\0 3F\0 A8\r\r>", 11)); // some adapters send NUL bytes
    EXPECT_TRUE(arrives(" 3F A8\r\r>"));
    received.clear();
    QByteArray much;
    for (int i = 0; i < 500; ++i) {
        const QByteArray piece = QByteArray::number(i) + ' ';
        say(piece);
        much += piece;
    }
    EXPECT_TRUE(arrives(much));
    EXPECT_EQ(transport.state(), transport::condition::open);
}

TEST_F(bluetooth_le, tells_what_is_wrong_and_connects_when_it_is_mended) {
    const auto put = [this](const QStringList& lines) { return [=, this] { service.put_le(lines); }; };
    const auto usual = put(stand_in::usual);
    const auto pairing = [this](bool wanted) { return set("set_le", {le_address, "wants_pairing", wanted}); };
    const struct {
        const char* part_of_reason;
        std::function<void()> break_it;
        std::function<void()> mend_it;
    } rows[] = {
        {"is not running", set("disappear"), set("appear")},
        {"may not talk to", fault("GetManagedObjects", "org.freedesktop.DBus.Error.AccessDenied"),
         fault("GetManagedObjects", "")},
        {"This computer has no Bluetooth", set("set_adapter", {false, false}),
         set("set_adapter", {true, true})},
        {"is switched off", set("set_adapter", {true, false}), set("set_adapter", {true, true})},
        {"IOS-Vlink could not be reached", fault("Connect", "org.bluez.Error.Failed"), fault("Connect", "")},
        {"IOS-Vlink is connected, but has no service that an adapter has",
         put({"fef5 8082 notify,write", "180a 2a29 read"}), usual},
        {"IOS-Vlink wants to be paired with this computer first. Pair it", pairing(true), pairing(false)},
        {"does not let this program hear", fault("StartNotify", "org.bluez.Error.Failed"),
         fault("StartNotify", "")},
        {"could not be started",
         [this] {
             service.call("forget", {le_address});
             service.fault("StartDiscovery", "org.bluez.Error.Failed");
         },
         [=, this] {
             service.fault("StartDiscovery", "");
             usual();
         }},
    };
    for (const auto& row : rows) {
        row.break_it();
        transport.open();
        EXPECT_EQ(told(), "failed") << row.part_of_reason;
        EXPECT_TRUE(reason.contains(row.part_of_reason)) << reason.toStdString();
        EXPECT_EQ(transport.state(), transport::condition::closed);
        row.mend_it();
        works();
    }
    transport.open(); // and a device that tells so at the first command
    EXPECT_EQ(told(), "opened");
    service.fault("WriteValue", "org.bluez.Error.NotPermitted");
    transport.write("AT Z\r");
    EXPECT_EQ(told(), "failed closed");
    EXPECT_TRUE(reason.contains("wants to be paired")) << reason.toStdString();
    service.fault("WriteValue", "");
    works();
}

TEST_F(bluetooth_le, a_link_that_is_lost_is_told_and_asked_to_notify_again) {
    const std::function<void()> losses[] = {set("drop", {le_address}),
                                            set("set_adapter", {true, false}),
                                            set("set_adapter", {false, false}),
                                            set("disappear"),
                                            set("forget", {le_address}),
                                            [this] { // a command is refused
                                                service.fault("WriteValue", "org.bluez.Error.Failed");
                                                transport.write(long_command);
                                            },
                                            [this] { // in the middle of a command
                                                service.set_le("drops_after", 1);
                                                transport.write(long_command);
                                            }};
    for (const auto& lose : losses) {
        transport.open();
        EXPECT_EQ(told(), "opened") << reason.toStdString();
        received.clear();
        say("last words");
        EXPECT_TRUE(arrives("last words"));
        lose();
        EXPECT_EQ(told(), "closed");
        EXPECT_EQ(transport.state(), transport::condition::closed);
        transport.write("too late\r");
        service.call("appear");
        service.call("set_adapter", {true, true});
        service.fault("WriteValue", "");
        service.put_le();
        works();
    }
    for (const bool keeps : {false, true}) { // what the service remembers by itself
        service.set_le("keeps_notify", keeps);
        transport.open();
        EXPECT_EQ(told(), "opened");
        service.call("drop", {le_address});
        EXPECT_EQ(told(), "closed");
        works();
    }
    service.set_le("services_ms", 5000);
    transport.open(); // while it is being set up
    EXPECT_TRUE(comes_to("connected"));
    service.call("drop", {le_address});
    EXPECT_EQ(told(), "failed");
    EXPECT_TRUE(reason.contains("broke the connection while it was being set up")) << reason.toStdString();
    for (const int late : {0, 300}) {
        service.set_le("services_ms", late);
        works();
    }
}

TEST_F(bluetooth_le, a_service_that_hangs_holds_nothing_up) {
    le_transport hurried(place, 300);
    listen(hurried);
    const struct {
        const char* member;
        const char* part_of_reason;
    } rows[] = {{"GetManagedObjects", "does not answer"},
                {"Connect", "could not be reached"},
                {"StartNotify", "does not let this program hear"},
                {"StartDiscovery", "was not found nearby"},
                {"WriteValue", nullptr}};
    for (const auto& row : rows) {
        const bool is_search = row.member == QLatin1String("StartDiscovery");
        if (is_search)
            service.call("forget", {le_address});
        service.fault(row.member, "silence");
        QElapsedTimer since;
        since.start();
        hurried.open();
        hurried.close(); // given up at once
        hurried.open();
        EXPECT_LT(since.elapsed(), 100);
        if (!row.part_of_reason) {
            EXPECT_EQ(told(), "opened");
            hurried.write("AT I\r");
            EXPECT_EQ(told(), "closed");
        } else {
            EXPECT_EQ(told(), "failed") << row.member;
            EXPECT_TRUE(reason.contains(row.part_of_reason)) << reason.toStdString();
        }
        service.fault(row.member, "");
        if (is_search)
            service.put_le();
        transport.open();
        service.call("answer_late", {"org.bluez.Error.Failed"}); // nobody's any more
        EXPECT_EQ(told(), "opened") << row.member << reason.toStdString();
        exchanges("AT I\r", "command 5");
        transport.close();
        EXPECT_TRUE(comes_to(""));
    }
    service.set_le("services_ms", 5000);
    hurried.open();
    EXPECT_EQ(told(), "failed");
    EXPECT_TRUE(reason.contains("does not tell what it offers")) << reason.toStdString();
}

TEST_F(bluetooth_le, a_connection_of_someone_else_stays) {
    const QString path = "/org/bluez/hci0/dev_" + QString(le_address).replace(':', '_');
    QDBusConnection::systemBus().call(
        QDBusMessage::createMethodCall("org.bluez", path, "org.bluez.Device1", "Connect"));
    transport.open();
    EXPECT_EQ(told(), "opened") << reason.toStdString();
    exchanges("AT I\r", "command 5");
    transport.close();
    EXPECT_TRUE(comes_to("connected"));
}

} // namespace brivant
