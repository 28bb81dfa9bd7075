#include "link/bluetooth_scanner.h"
#include "tests/bluetooth/stand_in.h"
#include "tests/support/hand_timers.h"

namespace brivant {

// The list of devices and what it says about itself. Time passes by hand; the service answers by itself.

namespace {

class bluetooth_scan : public testing::Test {
protected:
    using phase = bluetooth_scanner::phase;

    stand_in service;
    hand_timers clock;
    bluetooth_scanner scanner{clock};
    int changes = 0;

    bluetooth_scan() {
        QObject::connect(&scanner, &bluetooth_scanner::changed, [this] { ++changes; });
    }
    // What was asked of the service until now is answered.
    void settle() {
        bool answered = false;
        bluetooth_service asked_last;
        asked_last.look([&](const bluetooth_surroundings&) { answered = true; });
        EXPECT_TRUE(wait_until([&] { return answered; }));
    }
    bool comes_to(phase wanted) {
        return wait_until([&] { return scanner.now() == wanted; });
    }
    // The list as it stands after the service was looked at until it says this.
    bool lists(const QString& wanted) {
        return wait_until(
            [&] {
                clock.advance(bluetooth_scanner::look_every_ms / 20);
                return list() == wanted;
            },
            3000);
    }
    QString list() {
        QStringList rows;
        for (const bluetooth_device& device : scanner.devices())
            rows += device.name + (device.paired ? " paired" : "") + (device.serial_port ? " serial" : "");
        return rows.join(", ");
    }
};

} // namespace

TEST_F(bluetooth_scan, lists_the_likely_ones_first_and_follows_what_changes) {
    service.call("put_device", {"AA:BB:CC:DD:EE:04", "A\nvery " + QString(300, 'x'), false, true, true, ""});
    scanner.start();
    EXPECT_EQ(scanner.now(), phase::asking);
    EXPECT_TRUE(comes_to(phase::scanning));
    const QString long_name = "A very " + QString(73, 'x');
    EXPECT_TRUE(lists("OBDII paired serial, " + long_name + " serial, V-LINK, Phone paired"))
        << list().toStdString();
    service.call("put_device", {late_address, "V-LINK", true, true, true, ""}); // it is paired meanwhile
    EXPECT_TRUE(lists("OBDII paired serial, V-LINK paired serial, " + long_name + " serial, Phone paired"));
    clock.advance(bluetooth_scanner::scan_ms);
    EXPECT_EQ(scanner.now(), phase::done);
    EXPECT_TRUE(wait_until([this] { return !service.call("is_discovering").toBool(); }));
    service.call("put_device", {phone_address, "My phone", true, false, true, ""});
    EXPECT_TRUE(
        lists("OBDII paired serial, V-LINK paired serial, " + long_name + " serial, My phone paired"));
    const int before = changes;
    clock.advance(5000);
    settle();
    EXPECT_EQ(changes, before); // no news, nothing told

    scanner.start(); // and once more
    EXPECT_TRUE(comes_to(phase::scanning));
    EXPECT_TRUE(wait_until([this] { return service.call("is_discovering").toBool(); }));
    scanner.stop();
    EXPECT_TRUE(wait_until([this] { return !service.call("is_discovering").toBool(); }));
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(bluetooth_scan, tells_kinds_apart_and_who_may_be_an_adapter) {
    service.call("forget_devices");
    const struct {
        const char* name;
        const char* characteristic;
        bool random;
    } rows[] = {{"Nobody knows", "fff0 fff1 notify", true},
                {"elm327 v2.1", "180a 2a29 read", false},
                {"My OBD", "180a 2a29 read", true}, // it does not begin so
                {"Watch", "180d 2a37 notify", true},
                {"", "180d 2a37 notify", true}, // a beacon, which nobody could choose
                {"", "18f0 2af0 notify", true}};
    for (int i = 0; i < 6; ++i) {
        const QString address = "C0:00:00:00:00:0" + QString::number(i);
        service.call("put_le_device", {address, rows[i].name, true, QStringList{rows[i].characteristic}, 23});
        service.call("set_le", {address, "random", rows[i].random});
    }
    service.call("put_device", {obd_address, "OBDII", true, true, true, ""});
    service.call("put_device", {late_address, "Loudspeaker", false, false, true, ""});
    scanner.start();
    EXPECT_TRUE(comes_to(phase::scanning));
    QStringList list;
    for (const bluetooth_device& device : scanner.devices())
        list += QString(device.may_be_adapter ? "adapter " : "") + (device.is_le ? "LE " : "") + device.name;
    EXPECT_EQ(list.join(", "), "adapter OBDII, adapter LE C0:00:00:00:00:05, adapter LE elm327 v2.1, "
                               "adapter LE Nobody knows, Loudspeaker, LE My OBD, LE Watch");
    EXPECT_EQ(scanner.devices()[1].where().text(), "ble:C0:00:00:00:00:05");
}

TEST_F(bluetooth_scan, says_why_not_and_goes_on_by_itself) {
    service.call("disappear");
    scanner.start();
    EXPECT_TRUE(comes_to(phase::unusable));
    QStringList sentences{scanner.sentence()};
    const auto next_sentence = [&] {
        const bool is_new = wait_until([&] {
            clock.advance(bluetooth_scanner::look_every_ms / 20);
            return scanner.sentence() != sentences.last();
        });
        EXPECT_TRUE(is_new) << sentences.last().toStdString();
        sentences += scanner.sentence();
    };
    service.call("set_adapter", {false, false});
    service.call("appear");
    next_sentence();
    service.call("set_adapter", {true, false});
    next_sentence();
    service.call("set_adapter", {true, true});
    next_sentence();
    service.call("set_adapter", {true, false}); // while it scans
    next_sentence();
    EXPECT_EQ(scanner.now(), phase::unusable);
    const char* parts[] = {"is not running", "has no Bluetooth", "is switched off", "Looking for",
                           "is switched off"};
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(sentences[i].contains(parts[i])) << sentences[i].toStdString();

    service.call("set_adapter", {true, true});
    service.fault("StartDiscovery", "org.bluez.Error.Failed");
    scanner.start();
    EXPECT_TRUE(comes_to(phase::done));
    EXPECT_TRUE(scanner.sentence().contains("could not be started"));
    EXPECT_TRUE(list().startsWith("OBDII paired serial")); // what is known is listed all the same
}

} // namespace brivant
