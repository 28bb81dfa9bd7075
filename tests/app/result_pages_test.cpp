#include "tests/app/running_window.h"

#include "app/diagnostics/report_button.h"
#include "tests/support/full_disk.h"
#include "tests/support/test_file.h"

#include <QListWidget>
#include <QTextBrowser>

namespace brivant {

namespace {

enum rail_row { codes_row, pending_row, vehicle_row, mode6_row_of_rail, misfire_row, o2_row, extras_row };

struct opened_car : running_window {
    explicit opened_car(const QString& car = "can11")
        : running_window(launch_options::link_choice::demo, car) {
        press(Qt::Key_1, Qt::ControlModifier);
    }

    void open_page(rail_row row) { part<QListWidget>("rail").setCurrentRow(row); }
    bool wait_until_stopped(const char* stop) {
        return QTest::qWaitFor([&] { return part<QPushButton>(stop).isHidden(); }, 30000);
    }
    QString report_text() {
        const QString saved = folder.filePath("report.txt");
        part<report_button>().save_as_text(saved);
        return QString::fromUtf8(bytes_of(saved));
    }
};

// The first cell whose text has no room, "" when there is none.
QString cut_cell(const QTableView& table) {
    constexpr int padding = 11; // of a cell, on either side
    for (int row = 0; row < table.model()->rowCount(); ++row) {
        for (int column = 0; column < table.model()->columnCount(); ++column) {
            const QString text = table.model()->index(row, column).data().toString();
            const QRect room(0, 0, table.columnWidth(column) - 2 * padding, table.rowHeight(row));
            const QRect needed = table.fontMetrics().boundingRect(room, Qt::TextWordWrap, text);
            if (needed.height() > room.height() || needed.width() > room.width())
                return text;
        }
    }
    return {};
}

} // namespace

TEST(result_pages, show_the_tests_and_the_selected_one) {
    opened_car car;
    car.open_page(mode6_row_of_rail);
    EXPECT_TRUE(car.text_of("mode6_main_empty_text").startsWith("No tests read yet."));
    car.press(Qt::Key_F5);
    EXPECT_FALSE(car.part<QPushButton>("misfire_read").isEnabled()) << "one operation at a time";
    EXPECT_TRUE(car.text_of("misfire_note").startsWith("Mode 6 is being read"));
    ASSERT_TRUE(car.wait_until_stopped("mode6_stop"));
    EXPECT_TRUE(car.part<QPushButton>("misfire_read").isEnabled());

    const QList<test_row> results = rows_of<test_row>(car.core.diagnostics.rows(part::mode6));
    const QStringList shown = car.rows_of("mode6_main_table");
    ASSERT_GT(results.size(), 1);
    ASSERT_EQ(shown.size(), results.size());
    auto& detail = car.part<QTextBrowser>("mode6_detail");
    for (qsizetype i = 0; i < results.size(); ++i) {
        const QStringList cells = shown.at(i).split(QLatin1Char('\t'));
        EXPECT_TRUE(cells.at(1).startsWith(results.at(i).value)) << shown.at(i).toStdString();
        EXPECT_TRUE(results.at(i).text().endsWith(cells.at(2))) << shown.at(i).toStdString();
        EXPECT_EQ(cells.at(3),
                  QStringLiteral("Min %1, Max %2").arg(results.at(i).minimum, results.at(i).maximum));

        car.part<QTableView>("mode6_main_table").selectRow(static_cast<int>(i));
        const QString told = detail.toPlainText().simplified();
        EXPECT_TRUE(told.contains(results.at(i).text().simplified())) << told.toStdString();
    }
    EXPECT_EQ(car.rows_of("misfire_main_table"), QStringList());
    EXPECT_TRUE(car.report_text().startsWith("------Mode6 read:"));
    car.open_page(extras_row);
    EXPECT_FALSE(car.part<QPushButton>("report").isEnabled());
}

TEST(result_pages, say_that_a_car_has_nothing_to_tell) {
    opened_car car("iso9141");
    car.open_page(misfire_row);
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_until_stopped("misfire_stop"));
    EXPECT_EQ(car.part<notice_banner>().shown_text(), "Not Supported by your vehicle");
    EXPECT_EQ(car.text_of("misfire_main_empty_text"), "No misfire counts were received.");
    EXPECT_TRUE(car.text_of("o2_main_empty_text").startsWith("No tests read yet."));
}

TEST(result_pages, show_pending_codes_and_the_freeze_frame) {
    opened_car car;
    car.open_page(pending_row);
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_until_stopped("pending_stop"));
    EXPECT_EQ(car.rows_of("pending_main_table"), QStringList{"P0171\t7E8\tSystem Too Lean Bank 1"});
    const QStringList frame = car.rows_of("pending_side_table");
    ASSERT_FALSE(frame.isEmpty());
    EXPECT_EQ(frame.first(), "Freezed by\tP0133 - O2 Sensor Circuit Slow Response Bank 1 Sensor 1");
    EXPECT_TRUE(frame.contains("Engine RPM\t1726.00 RPM"));

    for (int width = 1180; width >= 900; width -= 20) {
        car.window->resize(width, 600);
        QCoreApplication::processEvents();
        EXPECT_EQ(cut_cell(car.part<QTableView>("pending_main_table")), QString()) << width;
        EXPECT_EQ(cut_cell(car.part<QTableView>("pending_side_table")), QString()) << width;
    }

    // What was read goes into a file without marks of HTML; one that cannot be written is told.
    const QString text = car.report_text();
    EXPECT_TRUE(text.contains("P0171 - ") && text.contains("System Too Lean Bank 1")) << text.toStdString();
    EXPECT_FALSE(text.contains("<font"));
    auto& report = car.part<report_button>();
    const QString pdf = car.folder.filePath("report.pdf");
    report.save_as_pdf(pdf);
    const QByteArray whole = bytes_of(pdf);
    EXPECT_TRUE(whole.startsWith("%PDF-"));
    EXPECT_FALSE(car.part<notice_banner>().isVisible());
    for (const auto& save : {&report_button::save_as_pdf, &report_button::save_as_text}) {
        {
            const full_disk full(100);
            (report.*save)(pdf);
        }
        EXPECT_TRUE(car.part<notice_banner>().shown_text().contains("report.pdf cannot be written"));
        car.part<notice_banner>().dismiss();
        EXPECT_EQ(bytes_of(pdf), whole) << "the old one stays";
    }
    report.save_as_pdf(car.folder.filePath("not/there.pdf"));
    EXPECT_TRUE(car.part<notice_banner>().shown_text().contains("there.pdf cannot be written"));
}

TEST(result_pages, keep_what_was_read_before_a_stop) {
    opened_car car;
    car.open_page(vehicle_row);
    car.press(Qt::Key_F5);
    const auto rows = [&] { return car.core.diagnostics.rows(part::vehicle); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return rows().size() > 6; }, 20000));
    car.press(Qt::Key_Escape);
    EXPECT_TRUE(car.part<QPushButton>("vehicle_stop").isHidden());
    const QStringList kept = car.rows_of("vehicle_main_table");
    EXPECT_EQ(kept.size(), rows().size());
    EXPECT_TRUE(kept.contains("\tVoltage\t14.1V")) << kept.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(kept.filter("ECU(7E8) Eng.").size(), 1);

    car.press(Qt::Key_F5);
    EXPECT_LT(car.rows_of("vehicle_main_table").size(), kept.size()) << "the old rows are gone";
    ASSERT_TRUE(car.wait_until_stopped("vehicle_stop"));
    EXPECT_GT(car.rows_of("vehicle_main_table").size(), kept.size());
    EXPECT_EQ(car.rows_of("vehicle_main_table").size(), rows().size());
}

} // namespace brivant
