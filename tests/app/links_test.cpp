#include "tests/app/running_window.h"
#include <QRadioButton>

namespace brivant {

// The cards of links without a radio, and what the preferences know of them.

namespace {

struct linked_window : running_window {
    using running_window::running_window;

    void know(const QString& where, const QString& name) {
        core.defaults.set(setting::known_adapters,
                          core.defaults.value(setting::known_adapters)
                              << QString(R"({"where":"%1","name":"%2"})").arg(where, name));
    }
    void open_links() { press(Qt::Key_L, Qt::ControlModifier); }
    QString cell(int row, int column) { return part<QTableWidget>("links_list").item(row, column)->text(); }
};

} // namespace

TEST(links_card, checks_the_adapter_in_use) {
    linked_window car(launch_options::link_choice::demo);
    car.open_links();
    EXPECT_EQ(car.cell(0, 0), "Demo car");
    EXPECT_EQ(car.cell(0, 4), "in use");
    EXPECT_FALSE(car.part<QPushButton>("links_forget").isEnabled()); // it is not remembered
    car.click("links_check");
    ASSERT_TRUE(QTest::qWaitFor([&] { return car.window->findChild<QLabel*>("check_verdict") != nullptr; }));
    auto& again = car.part<QPushButton>("check_again");
    EXPECT_EQ(again.text(), "Stop");
    auto& facts = car.part<QTableWidget>("check_facts");
    ASSERT_TRUE(QTest::qWaitFor([&] { return facts.rowCount() > 3; }, 60000));
    again.click();
    EXPECT_EQ(again.text(), "Check again");
    EXPECT_FALSE(car.part<QLabel>("check_verdict").text().isEmpty()); // of what was found out so far
    again.click();
    car.press(Qt::Key_Escape); // in the middle of it
    car.press(Qt::Key_1, Qt::ControlModifier);
    car.press(Qt::Key_F5);
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2"); // the screen has its link again
}

TEST(links_card, the_adapter_in_force) {
    linked_window program;
    program.know("usb:/dev/serial/by-id/none", "Cable");
    program.know("wifi:10.0.0.5:35000", "Garage");
    program.open_links();
    program.part<QTableWidget>("links_list").selectRow(0);
    EXPECT_EQ(program.cell(0, 4), "not plugged in");
    program.click("links_use");
    EXPECT_EQ(program.core.place.now().text(), "usb:/dev/serial/by-id/none");
    program.press(Qt::Key_5, Qt::ControlModifier);
    EXPECT_TRUE(program.part<QRadioButton>("other_link").isChecked());
    EXPECT_EQ(program.part<QLabel>("other_help").text(), "USB: Cable");
    program.part<QRadioButton>("wifi").click();
    EXPECT_EQ(program.core.place.interface_kind(), interface_wifi);
    EXPECT_EQ(program.core.defaults.value(setting::link), "");
    program.part<QRadioButton>("other_link").click(); // back to it
    EXPECT_EQ(program.core.place.interface_kind(), interface_serial);
    program.press(Qt::Key_F5);
    EXPECT_TRUE(QTest::qWaitFor([&] { return program.part<QLabel>("test_title").text() == "No link"; }));
    EXPECT_TRUE(program.part<QLabel>("test_text").text().contains("not plugged in"))
        << program.part<QLabel>("test_text").text().toStdString();
}

TEST(links_card, opens_where_a_kind_without_an_adapter_is_chosen) {
    linked_window program;
    program.press(Qt::Key_5, Qt::ControlModifier);
    program.part<QRadioButton>("other_link").click();
    EXPECT_TRUE(program.part<QTableWidget>("links_list").isVisible());
    EXPECT_TRUE(program.part<QRadioButton>("bluetooth").isChecked()); // as before, until one is chosen
    program.press(Qt::Key_Escape);
}

} // namespace brivant
