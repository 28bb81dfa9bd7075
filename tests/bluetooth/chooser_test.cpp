#include "tests/app/running_window.h"
#include "tests/bluetooth/stand_in.h"

namespace brivant {

// The whole program over Bluetooth, from the button to the codes, with the list of devices in between.

namespace {

struct bluetooth_window : running_window {
    bluetooth_window() { press(Qt::Key_1, Qt::ControlModifier); }

    device_chooser* chooser() {
        for (device_chooser* one : window->findChildren<device_chooser*>())
            if (one->isVisible())
                return one;
        return nullptr;
    }
    bool shows_chooser() {
        return QTest::qWaitFor([this] { return chooser() != nullptr; });
    }
    QTableWidget& list() { return *chooser()->findChild<QTableWidget*>(); }
    bool lists(int rows) {
        return QTest::qWaitFor([&] { return list().rowCount() == rows; });
    }
    QString names() {
        QStringList texts;
        for (int row = 0; row < list().rowCount(); ++row)
            texts += list().item(row, 0)->text();
        return texts.join(", ");
    }
    // "V-LINK, not paired" for the row that is selected.
    QString selected() {
        const QList<QTableWidgetItem*> row = list().selectedItems();
        return row.isEmpty() ? QString() : row.first()->text() + ", " + row.last()->text();
    }
    QPushButton& button(const char* name) { return *chooser()->findChild<QPushButton*>(name); }
    QString words(const char* name) { return chooser()->findChild<QLabel*>(name)->text(); }
    void choose(int row) {
        list().selectRow(row);
        button("device_connect").click();
    }
    QString status() { return part<status_strip>().status_text(); }
};

} // namespace

TEST(device_chooser, first_start_to_codes_and_the_next_time_without_asking) {
    stand_in service;
    bluetooth_window car;
    car.click("read");
    ASSERT_TRUE(car.shows_chooser());
    EXPECT_FALSE(car.part<QPushButton>("stop").isHidden()); // the operation waits
    ASSERT_TRUE(car.lists(2));
    EXPECT_EQ(car.selected(), "OBDII, paired"); // nothing was used before: the likely one
    EXPECT_EQ(car.names(), "OBDII, V-LINK");
    EXPECT_TRUE(car.button("device_connect").isEnabled());
    EXPECT_TRUE(car.words("device_sentence").startsWith("Looking for devices"));
    car.list().selectRow(1);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return car.selected() == "V-LINK, not paired"; })); // its name has arrived
    EXPECT_TRUE(car.words("device_sentence")
                    .contains("Pair it in the system's Bluetooth settings (PIN usually 1234 or 0000)"));
    car.list().selectRow(0);
    car.press(Qt::Key_Return);
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");
    EXPECT_EQ(car.part<link_mark>().link().far_end, "Bluetooth OBDII");
    EXPECT_EQ(car.core.defaults.value(setting::bluetooth_address), obd_address);
    EXPECT_EQ(car.core.defaults.value(setting::bluetooth_name), "OBDII");

    service.call("close_channels"); // the link is lost
    EXPECT_TRUE(QTest::qWaitFor([&] { return car.link() == link_words::condition::closed; }));
    EXPECT_EQ(car.status(), "Connection to BT lost");
    car.click("read");
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");

    car.press(Qt::Key_5, Qt::ControlModifier); // the list is one click away in the preferences
    car.part<QPushButton>("device_change").click();
    ASSERT_TRUE(car.shows_chooser());
    ASSERT_TRUE(car.lists(2));
    EXPECT_EQ(car.selected(), "OBDII, paired, last used");
    car.press(Qt::Key_Escape);
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_EQ(car.link(), link_words::condition::open); // as it was
}

TEST(device_chooser, offers_what_may_be_an_adapter_of_either_kind) {
    stand_in service;
    service.put_le(stand_in::usual, 247, false);
    service.call("put_le_device", {"C1:BB:CC:DD:EE:06", "Watch", false, QStringList{"180d 2a37 notify"}, 23});
    bluetooth_window car;
    car.click("read");
    ASSERT_TRUE(car.shows_chooser());
    ASSERT_TRUE(car.lists(3));
    EXPECT_EQ(car.names(), "OBDII, IOS-Vlink, V-LINK");
    QPushButton& more = car.button("device_more");
    EXPECT_TRUE(QTest::qWaitFor([&] { return more.text() == "&More (2)"; }));
    car.list().selectRow(1);
    EXPECT_EQ(car.selected(), "IOS-Vlink, found");
    EXPECT_FALSE(car.words("device_sentence").contains("Pair it")); // it needs none
    EXPECT_EQ(car.list().item(0, 2)->text() + ", " + car.list().item(1, 2)->text(),
              "Bluetooth, Bluetooth LE");
    more.setFocus();
    QTest::keyClick(&more, Qt::Key_Space);
    ASSERT_TRUE(car.lists(5));
    EXPECT_EQ(car.names(), "OBDII, IOS-Vlink, V-LINK, Watch, Phone");
    EXPECT_EQ(car.selected(), "IOS-Vlink, found"); // the selection follows its device
    QTest::keyClick(&more, Qt::Key_Space);
    ASSERT_TRUE(car.lists(3));
    car.choose(1);
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2") << car.status().toStdString();
    EXPECT_EQ(car.core.place.now().text(), "ble:" + le_address);
    EXPECT_EQ(car.core.place.device_called(), "IOS-Vlink");

    service.call("drop", {le_address}); // the link is lost
    EXPECT_TRUE(QTest::qWaitFor([&] { return car.link() == link_words::condition::closed; }));
    car.click("read");
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");
}

TEST(device_chooser, says_when_nothing_looks_like_an_adapter) {
    stand_in service;
    service.call("forget_devices");
    service.call("put_device", {phone_address, "Phone", true, false, true, ""});
    service.fault("StartDiscovery", "org.bluez.Error.Failed"); // the search ends at once
    bluetooth_window car;
    car.click("read");
    ASSERT_TRUE(car.shows_chooser());
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return car.words("device_problem").contains("looks like an adapter"); }));
    car.button("device_more").click();
    EXPECT_EQ(car.names(), "Phone");
    EXPECT_TRUE(car.list().isVisible());
}

TEST(device_chooser, comes_by_itself_when_the_device_does_not_answer) {
    stand_in service;
    bluetooth_window car;
    car.core.place.take_device(obd_address, "OBDII");
    service.fault("ConnectProfile", "org.bluez.Error.Failed");
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.shows_chooser());
    ASSERT_TRUE(car.lists(2));
    QStringList words;
    for (const QLabel* label : car.chooser()->findChildren<QLabel*>())
        words += label->text();
    EXPECT_TRUE(words.join('\n').contains("OBDII could not be reached"));
    EXPECT_EQ(car.selected(), "OBDII, paired, last used");
    service.fault("ConnectProfile", "");
    car.choose(0);
    EXPECT_TRUE(car.wait_until_idle()); // the operation went on
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");
}

TEST(device_chooser, cancelling) {
    stand_in service;
    bluetooth_window car;
    car.click("read");
    ASSERT_TRUE(car.shows_chooser());
    car.press(Qt::Key_Escape);
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    EXPECT_EQ(car.status(), "Ready");

    service.fault("ConnectProfile", "silence");
    car.click("read");
    ASSERT_TRUE(car.shows_chooser());
    ASSERT_TRUE(car.lists(2));
    car.choose(0);
    EXPECT_EQ(car.link(), link_words::condition::opening);
    EXPECT_TRUE(car.status().startsWith("Connecting to:OBDII"));
    car.press(Qt::Key_Escape); // while it connects
    EXPECT_EQ(car.link(), link_words::condition::closed);
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    service.fault("ConnectProfile", "");
    car.click("read");
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");
    car.click("read");
    EXPECT_TRUE(car.wait_until_idle());
}

TEST(device_chooser, says_what_is_wrong_with_bluetooth) {
    stand_in service;
    service.call("set_adapter", {true, false});
    bluetooth_window car;
    car.click("read");
    ASSERT_TRUE(car.shows_chooser());
    EXPECT_TRUE(QTest::qWaitFor([&] { return car.words("device_problem").contains("is switched off"); }));
    EXPECT_FALSE(car.button("device_connect").isEnabled());
    EXPECT_NE(qobject_cast<QPushButton*>(QApplication::focusWidget()), nullptr);
    service.call("set_adapter", {true, true});
    EXPECT_TRUE(car.lists(2)); // it goes on by itself
    EXPECT_TRUE(car.list().hasFocus());
    car.press(Qt::Key_2, Qt::ControlModifier); // the keys of the window rest
    ASSERT_NE(car.chooser(), nullptr);
    car.window->choose_screen(screen_kind::live_data); // the list goes with the operation
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !service.call("is_discovering").toBool(); }));
}

} // namespace brivant
