#include "tests/app/running_window.h"

#include "app/look/elided_label.h"

#include <QClipboard>
#include <QListWidget>
#include <QTextBrowser>
#include <QToolButton>

namespace brivant {

namespace {

const QStringList codes_of_the_car{
    "P0133\t7E8\tO2 Sensor Circuit Slow Response Bank 1 Sensor 1 (confirmed)",
    "P0220\t7E8\tThrottle/Pedal Position Sensor/Switch B Circuit (confirmed)",
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

    EXPECT_EQ(car.text_of("verdict_answer"), "2 fault codes");
    EXPECT_EQ(car.text_of("verdict_more"), "pending and permanent not read");
    EXPECT_EQ(car.text_of("verdict_monitors"), "6 of 7 monitors ready");
    EXPECT_EQ(car.text_of("verdict_missing"), "Inspection: not yet, Evaporative system");
    const QString readiness = car.part<QLabel>("readiness").accessibleName();
    EXPECT_EQ(readiness.count(": "), 12) << "eleven monitors";
    EXPECT_TRUE(readiness.contains("Catalyst: complete,"));
    EXPECT_TRUE(readiness.contains("Evaporative system: not complete,"));
    EXPECT_TRUE(readiness.contains("Heated catalyst: not supported,"));

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

// One key reads it all; the chosen code tells what belongs to it.
TEST(read_codes_view, reads_all_and_tells_the_code) {
    running_window car(launch_options::link_choice::demo);
    car.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(car.text_of("empty_text").startsWith("No codes read yet."));
    car.click("empty_next");
    EXPECT_TRUE(car.text_of("note").endsWith(", 1 of 5"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !car.part<QPushButton>("read_all").isHidden(); }, 60000));
    EXPECT_EQ(car.text_of("verdict_more"), "1 pending, 1 permanent");
    EXPECT_TRUE(car.part<elided_label>("verdict_vin").full_text().endsWith(" 14.1V"));
    EXPECT_EQ(car.rows_of("codes_table").size(), 3) << "confirmed and permanent are one row";
    car.part<QTableView>("codes_table").selectRow(0);
    EXPECT_EQ(car.text_of("code_title"), "P0133");
    const QString told = car.part<QTextBrowser>("code_text").toPlainText();
    EXPECT_TRUE(told.contains("confirmed, permanent, froze the frame")) << told.toStdString();
    EXPECT_TRUE(told.contains("1726.00 RPM") && told.contains("Tests of this system: "));
    car.part<QToolButton>("show_tests").click();
    EXPECT_FALSE(car.rows_of("mode6_main_table").isEmpty());

    // A stop ends it, not only its part.
    car.part<QListWidget>("rail").setCurrentRow(0);
    car.click("read_all");
    car.press(Qt::Key_Escape);
    QTest::qWait(50);
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    EXPECT_EQ(car.part<status_strip>().status_text(), "Stopped");
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
    EXPECT_EQ(car.rows_of("codes_table"), QStringList());
    EXPECT_EQ(car.text_of("empty_title"), "No fault codes");
    EXPECT_EQ(car.text_of("empty_text"), "No codes. Look for pending codes");
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
