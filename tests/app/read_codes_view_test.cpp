#include "tests/app/running_window.h"

#include <QClipboard>

namespace brivant {

namespace {

const QStringList codes_of_the_car{
    "P0133\t7E8\tO2 Sensor Circuit Slow Response Bank 1 Sensor 1",
    "P0220\t7E8\tThrottle/Pedal Position Sensor/Switch B Circuit",
};

struct diagnosed_car : running_window {
    diagnosed_car() : running_window(launch_options::link_choice::demo) {
        press(Qt::Key_1, Qt::ControlModifier);
        press(Qt::Key_F5);
        EXPECT_FALSE(part<QPushButton>("stop").isHidden());
        EXPECT_TRUE(wait_until_idle());
    }
};

} // namespace

TEST(read_codes_view, shows_what_the_demo_car_says) {
    diagnosed_car car;
    EXPECT_EQ(car.rows_of("codes_table"), codes_of_the_car);
    EXPECT_EQ(car.part<QLabel>("mil_word").text(), "ON");
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");
    EXPECT_TRUE(car.part<QLabel>("facts").text().contains("ELM327v1.5"));
    EXPECT_EQ(car.link(), link_words::condition::open);
    EXPECT_TRUE(car.part<link_mark>().link().details.contains("7E8 (Eng.), 7E9 (Trans.)"));

    const QAbstractItemModel& readiness = *car.part<QTableView>("readiness_table").model();
    EXPECT_EQ(readiness.index(0, 0).data().toString(), "Continous");
    EXPECT_EQ(readiness.index(4, 0).data().toString(), "Non-Continous");
    EXPECT_EQ(readiness.index(1, 1).data().toString(), "     Misfire");
    const QStringList states = car.rows_of("readiness_table");
    EXPECT_EQ(states.size(), 11);
    EXPECT_TRUE(states.contains("complete\tCatalyst"));
    EXPECT_TRUE(states.contains("not complete\tEvaporative system"));
    EXPECT_TRUE(states.contains("not supported\tHeated catalyst"));
    EXPECT_EQ(car.part<QLabel>("readiness_summary").text(), "6 of 7 complete");

    auto& table = car.part<QTableView>("codes_table");
    table.setFocus();
    table.selectRow(1);
    car.press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), codes_of_the_car.at(1));

    // The results outlive the screen.
    car.press(Qt::Key_4, Qt::ControlModifier);
    EXPECT_EQ(car.window->current_controller(), nullptr);
    car.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(car.rows_of("codes_table"), codes_of_the_car);
    EXPECT_EQ(car.part<QLabel>("mil_word").text(), "ON");
}

TEST(read_codes_view, clears_only_after_a_yes) {
    diagnosed_car car;
    auto& sheet = car.part<question_sheet>();
    car.click("clear");
    ASSERT_TRUE(sheet.is_open());
    car.press(Qt::Key_F5);
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden()) << "nothing starts below a question";
    car.press(Qt::Key_Return); // the first answer
    EXPECT_FALSE(sheet.is_open());
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    EXPECT_EQ(car.rows_of("codes_table"), codes_of_the_car);

    car.click("clear");
    car.press(Qt::Key_Tab);
    car.press(Qt::Key_Return);
    EXPECT_FALSE(car.part<QPushButton>("stop").isHidden());
    ASSERT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.rows_of("codes_table"), QStringList{"No codes\t\tLook for pending codes"});
    EXPECT_EQ(car.part<QLabel>("mil_word").text(), "OFF");
}

TEST(read_codes_view, stops_and_leaves_in_mid_operation) {
    running_window car(launch_options::link_choice::demo);
    car.press(Qt::Key_1, Qt::ControlModifier);
    car.press(Qt::Key_F5);
    car.press(Qt::Key_Escape);
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    EXPECT_EQ(car.part<status_strip>().status_text(), "Stopped");

    car.press(Qt::Key_F5);
    car.press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(car.window->current_screen(), screen_kind::live_data);
    EXPECT_TRUE(car.part<busy_ring>().isHidden());
}

} // namespace brivant
