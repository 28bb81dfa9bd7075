#include "tests/app/running_window.h"

#include "app/diagnostics/reading_bar.h"
#include "app/pictures/thumbnail.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRegularExpression>

namespace brivant {

// The reading by SAE J1979 on the screen, and the switch between the two.

namespace {

struct car_with_many_codes : running_window {
    car_with_many_codes() : running_window(launch_options::link_choice::demo, "can11-many-codes") {
        press(Qt::Key_1, Qt::ControlModifier);
    }
    QString line() { return part<QLabel>("reading_line").text(); }
    QCheckBox& standard_reading() { return part<QCheckBox>("standard_reading"); }
    bool bar_is_shown() { return part<reading_bar>("reading_bar").isVisible(); }
    QStringList codes() {
        QStringList texts;
        for (const QString& row : rows_of("codes_table"))
            texts += row.section(u'\t', 0, 0);
        return texts;
    }
};

const QStringList all_codes{"P0101", "P0113", "P0118", "P0171", "P0300", "P0420", "U0121", "P0741"};

} // namespace

TEST(second_reading_view, swaps_the_codes_without_asking_the_car) {
    car_with_many_codes car;
    EXPECT_FALSE(car.bar_is_shown());
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_until_idle());
    const QStringList own = car.codes();
    // Those that only the standard reads stand below the program's own, under a heading.
    EXPECT_EQ(own.join(u' '), "P0171 P0171 P0171 P0171 P0741 In this reply by SAE J1979 "
                              "P0101 P0113 P0118 P0300 P0420 U0121");
    EXPECT_EQ(car.line(), QStringLiteral("By SAE J1979 this reply holds: ") + all_codes.join(", "));
    EXPECT_TRUE(car.bar_is_shown());
    EXPECT_TRUE(car.part<QLabel>("verdict_more").text().endsWith("permanent not read"));

    car.click("read_by_standard");
    EXPECT_EQ(car.codes().first(all_codes.size()), all_codes);
    EXPECT_TRUE(car.line().startsWith("Read by SAE J1979. The program's own reading: P0171"));
    EXPECT_TRUE(car.part<QPushButton>("stop").isHidden());
    EXPECT_TRUE(car.part<QPushButton>("read").isEnabled());
    EXPECT_TRUE(car.core.defaults.value(setting::standard_reading));
    car.standard_reading().click();
    EXPECT_EQ(car.codes(), own);

    // With the switch on, the permanent codes follow by themselves; clearing forgets what was read.
    car.standard_reading().click();
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_until_idle());
    QStringList permanent;
    for (const QString& row : car.rows_of("codes_table"))
        if (row.contains("permanent"))
            permanent += row.section(u'\t', 0, 1);
    EXPECT_EQ(permanent, (QStringList{"P0171\t7E8", "P0300\t7E8", "P0420\t7E8"}));
    EXPECT_TRUE(car.part<QLabel>("permanent_words").text().contains("drive cycle"));
}

TEST(second_reading_view, marks_the_values_that_differ) {
    car_with_many_codes car;
    car.part<QListWidget>("rail").setCurrentRow(2);
    car.press(Qt::Key_F5);
    ASSERT_TRUE(QTest::qWaitFor([&] { return car.part<QPushButton>("vehicle_stop").isHidden(); }, 30000));
    const auto value_of_voltage = [&] {
        const QStringList rows = car.rows_of("vehicle_main_table").filter(QRegularExpression("^42\t"));
        return rows.value(0).section(u'\t', 2);
    };
    static const QRegularExpression note("^(.*) \\((By SAE J1979|The program's own reading): (.*)\\)$");
    const QRegularExpressionMatch own = note.match(value_of_voltage());
    ASSERT_TRUE(own.hasMatch()) << value_of_voltage().toStdString();
    car.part<QCheckBox>("vehicle_standard_reading").click();
    const QRegularExpressionMatch standard = note.match(value_of_voltage());
    EXPECT_EQ(standard.captured(1), own.captured(3)) << "each stands in the other's place";
    EXPECT_EQ(standard.captured(3), own.captured(1));
    EXPECT_GT(standard.captured(1).section(u' ', 0, 0).toDouble(), 9) << "volts of a running engine";
    EXPECT_TRUE(car.standard_reading().isChecked()) << "one switch for all pages";
}

// The menu of a thumbnail switches the reading while the run goes on, and for what it stored.
TEST(second_reading_view, live_values_and_stored_runs_follow_the_switch) {
    running_window car(launch_options::link_choice::demo);
    car.core.defaults.set(setting::sample_set.of_vehicle(car.core.car.cur_veh_id()), QStringList{"42", "0D"});
    car.core.defaults.set(setting::log_runs, true);
    car.press(Qt::Key_2, Qt::ControlModifier);
    car.press(Qt::Key_F5);
    const live_results& results = car.core.live;
    ASSERT_TRUE(QTest::qWaitFor([&] { return results.sample_cnt >= 3; }, 20000));
    auto& voltage = car.part<thumbnail>("thumb_42");
    ASSERT_TRUE(QTest::qWaitFor([&] { return voltage.toolTip().contains("By SAE J1979: "); }));
    const QRect mark = voltage.rect().adjusted(voltage.width() - 70, voltage.height() - 24, -28, 0);
    const QRect no_mark = car.part<thumbnail>("thumb_0D").rect().adjusted(mark.left(), mark.top(), -28, 0);
    EXPECT_NE(voltage.grab(mark).toImage(), car.part<thumbnail>("thumb_0D").grab(no_mark).toImage());
    EXPECT_LT(results.these_samples.at(0).latest, 1) << "the program's own reading";

    Q_EMIT voltage.reading_chosen(true);
    EXPECT_GT(results.these_samples.at(0).latest, 9);
    const qint64 sweeps = results.sample_cnt;
    ASSERT_TRUE(QTest::qWaitFor([&] { return results.sample_cnt > sweeps; }, 20000)) << "the run goes on";
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return voltage.toolTip().contains("The program's own reading: 0.0"); }));
    car.press(Qt::Key_Escape);

    car.press(Qt::Key_4, Qt::ControlModifier);
    auto& logs = car.part<QTableView>("logs_table");
    ASSERT_TRUE(QTest::qWaitFor([&] { return logs.model()->rowCount() == 1; }, 20000));
    logs.selectRow(0);
    const auto preview = [&] { return car.part<QPlainTextEdit>("preview").toPlainText(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return preview().contains("(V by SAE J1979)"); }, 20000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return car.window->findChild<thumbnail*>("thumb_42"); }, 20000));
    Q_EMIT car.part<thumbnail>("thumb_42").reading_chosen(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return preview().contains("SAE J1979 says otherwise of: "); }));
}

} // namespace brivant
