#include "link/bluetooth_transport.h"
#include "tests/bluetooth/stand_in.h"

#include <QElapsedTimer>
#include <functional>

namespace brivant {

// The real transport with a Bluetooth service at the other end of the bus, without a radio. All tests share
// one process, in which every connection must work whatever went wrong before.

namespace {

class bluetooth : public testing::Test {
protected:
    stand_in service;
    adapter_place place;
    bluetooth_transport transport{place};
    QString received;
    QStringList events;
    QString reason;

    bluetooth() {
        QObject::connect(&transport, &transport::opened, [this] { events += "opened"; });
        QObject::connect(&transport, &transport::closed, [this] { events += "closed"; });
        QObject::connect(&transport, &transport::failed, [this](const QString& why) {
            events += "failed";
            reason = why;
        });
        QObject::connect(&transport, &transport::OBDevent, [this](const QString& text) { received += text; });
        service.call("set_port", {0}); // the test speaks for the adapter
        place.take_device(obd_address, "OBDII");
    }
    // What was told until something was, joined by " ".
    QString told() {
        wait_until([this] { return !events.isEmpty(); });
        return std::exchange(events, {}).join(' ');
    }
    QByteArray sent(qsizetype size) {
        QByteArray bytes;
        wait_until([&] { return (bytes += service.call("take_received").toByteArray()).size() >= size; });
        return bytes;
    }
    void say(const QByteArray& bytes) { service.call("say", {bytes}); }
    bool arrives(const QString& text) {
        return wait_until([&] { return received == text; });
    }
    void works() {
        transport.open();
        EXPECT_EQ(told(), "opened");
        transport.write("AT I\r");
        EXPECT_EQ(sent(6), QByteArray("AT I\r\0", 6));
        EXPECT_EQ(service.call("channels"), 1);
        transport.close();
        EXPECT_TRUE(wait_until([this] { return service.call("channels") == 0; }));
        EXPECT_TRUE(wait_until([this] { return service.call("profiles") == 0; }));
        EXPECT_EQ(events.join(' '), ""); // one's own close is no news
    }
};

} // namespace

TEST_F(bluetooth, carries_commands_and_replies) {
    transport.write("too early\r");
    transport.open();
    transport.open(); // no second channel
    EXPECT_EQ(transport.state(), transport::condition::opening);
    EXPECT_EQ(events.join(' '), ""); // nothing is told inside the call
    EXPECT_EQ(told(), "opened");
    transport.write("01 00\r");
    transport.write("03\r");
    EXPECT_EQ(sent(11), QByteArray("01 00\r\0"
                                   "03\r\0",
                                   11));
    EXPECT_EQ(service.call("channels"), 1);
    say("41 00 BE");
    EXPECT_TRUE(arrives("41 00 BE"));
    say(QByteArray("\0 3F\0 A8\r\r>", 11)); // some adapters send NUL bytes
    EXPECT_TRUE(arrives("41 00 BE 3F A8\r\r>"));
    received.clear();
    const QByteArray much = QByteArray("7E8 06 41 00 BE 3F A8 13 \r").repeated(2000) + ">"; // over many reads
    say(much);
    EXPECT_TRUE(wait_until([this] { return received.endsWith('>'); }));
    EXPECT_EQ(received.toUtf8(), much);

    say("last words");
    service.call("close_channels");
    EXPECT_EQ(told(), "closed");
    EXPECT_TRUE(received.endsWith("last words"));
    EXPECT_EQ(transport.state(), transport::condition::closed);
    transport.write("too late\r");
    works();
}

TEST_F(bluetooth, tells_what_is_wrong_and_connects_when_it_is_mended) {
    const auto set = [this](const char* method, const QVariantList& arguments = {}) {
        return [=, this] { service.call(method, arguments); };
    };
    const auto fault = [this](const char* member, const char* error) {
        return [=, this] { service.fault(member, error); };
    };
    const auto device = [this](bool paired, bool serial, bool known) {
        return [=, this] { service.call("put_device", {obd_address, "OBDII", paired, serial, known, ""}); };
    };
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
        {"does not know the device OBDII", device(true, true, false), device(true, true, true)},
        {"OBDII is not paired with this computer. Pair it in the system's Bluetooth settings (PIN usually "
         "1234 or "
         "0000)",
         device(false, false, true), device(true, true, true)},
        {"OBDII offers no serial port", device(true, false, true), device(true, true, true)},
        {"OBDII could not be reached", fault("ConnectProfile", "org.bluez.Error.Failed"),
         fault("ConnectProfile", "")},
        {"OBDII could not be reached", fault("RegisterProfile", "org.bluez.Error.NotPermitted"),
         fault("RegisterProfile", "")},
    };
    for (const auto& row : rows) {
        row.break_it();
        transport.open();
        EXPECT_EQ(told(), "failed");
        EXPECT_TRUE(reason.contains(row.part_of_reason)) << reason.toStdString();
        EXPECT_EQ(transport.state(), transport::condition::closed);
        row.mend_it();
        works();
    }
}

TEST_F(bluetooth, an_attempt_that_is_given_up_does_not_touch_the_next) {
    for (const char* late_answer : {"", "org.bluez.Error.Failed"}) {
        service.fault("ConnectProfile", "silence");
        transport.open();
        EXPECT_TRUE(wait_until([this] { return service.call("profiles") == 1; }));
        transport.close();
        service.fault("ConnectProfile", "");
        transport.open();
        service.call("answer_late", {late_answer});
        EXPECT_EQ(told(), "opened") << late_answer;
        transport.write("AT I\r");
        EXPECT_EQ(sent(6), QByteArray("AT I\r\0", 6));
        transport.close();
        EXPECT_TRUE(wait_until([this] { return service.call("profiles") == 0; }));
        EXPECT_EQ(events.join(' '), "");
    }
}

TEST_F(bluetooth, a_service_that_hangs_holds_nothing_up) {
    service.fault("RegisterProfile", "silence");
    transport.open();
    QElapsedTimer since;
    since.start();
    int turns = 0;
    QTimer often;
    QObject::connect(&often, &QTimer::timeout, [&] { ++turns; });
    often.start(1);
    EXPECT_TRUE(wait_until([&] { return turns >= 100; }, 2000));
    transport.close();
    transport.open(); // waits behind the one that hangs
    transport.close();
    EXPECT_LT(since.elapsed(), 2000);
    service.fault("RegisterProfile", "");
    service.call("answer_late", {"org.bluez.Error.Failed"});
    works();
}

} // namespace brivant
