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
    ASSERT_TRUE(car.lists(3));
    EXPECT_EQ(car.selected(), "OBDII, paired"); // nothing was used before: the likely one
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
    EXPECT_EQ(car.part<status_strip>().link().far_end, "Bluetooth OBDII");
    EXPECT_EQ(car.core.defaults.value(setting::bluetooth_address), obd_address);
    EXPECT_EQ(car.core.defaults.value(setting::bluetooth_name), "OBDII");

    service.call("close_channels"); // the link is lost
    EXPECT_TRUE(QTest::qWaitFor([&] { return car.link() == link_words::condition::closed; }));
    EXPECT_EQ(car.status(), "Connection to BT lost");
    car.click("read");
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");

    car.part<QToolButton>("change_device").click(); // the list is one click away
    ASSERT_TRUE(car.shows_chooser());
    ASSERT_TRUE(car.lists(3));
    EXPECT_EQ(car.selected(), "OBDII, paired, last used");
    car.press(Qt::Key_Escape);
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_EQ(car.link(), link_words::condition::open); // as it was
}

TEST(device_chooser, comes_by_itself_when_the_device_does_not_answer) {
    stand_in service;
    bluetooth_window car;
    car.core.place.take_device(obd_address, "OBDII");
    service.fault("ConnectProfile", "org.bluez.Error.Failed");
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.shows_chooser());
    ASSERT_TRUE(car.lists(3));
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
    ASSERT_TRUE(car.lists(3));
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
    EXPECT_TRUE(car.lists(3)); // it goes on by itself
    EXPECT_TRUE(car.list().hasFocus());
    car.press(Qt::Key_2, Qt::ControlModifier); // the keys of the window rest
    ASSERT_NE(car.chooser(), nullptr);
    car.window->choose_screen(screen_kind::live_data); // the list goes with the operation
    EXPECT_EQ(car.chooser(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !service.call("is_discovering").toBool(); }));
}

} // namespace brivant
