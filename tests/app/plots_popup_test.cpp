#include "app/logs/plots_popup.h"

#include "app/pictures/plot_preview.h"
#include "charts/time_axis.h"
#include "tests/app/running_window.h"

#include <QClipboard>
#include <QImageReader>

namespace brivant {

namespace {

// A stored run of vehicle speed and engine speed, and its window, opened from the log browser.
struct plotted_log : running_window {
    explicit plotted_log(int sweeps, const char* type = "Log") {
        EXPECT_TRUE(core.db.add_own_parts());
        const int id = core.db.add_2_LOG_DB(QLatin1String(type), core.car.cur_veh_id(),
                                            QStringLiteral("%1 Sample points  ").arg(sweeps));
        core.db.begin_lines();
        EXPECT_TRUE(store_run_start(core.db, id, 1'700'000'000'000));
        for (int i = 0; i < sweeps; ++i) {
            core.db.append_2_LOG_DB(
                QStringLiteral("410D%1,410C1AF8").arg(i % 200, 2, 16, QChar(u'0')).toUpper(), QString(), i,
                id);
            store_moment(core.db, id, i, {100.0 * i, {20, 60}});
        }
        core.db.end_lines();
        core.defaults.set(setting::metric_units, true);
        press(Qt::Key_4, Qt::ControlModifier);
        auto& table = part<QTableView>("logs_table");
        EXPECT_TRUE(QTest::qWaitFor([&] { return table.model()->rowCount() == 1; }));
        table.selectRow(0);
        click("plot");
    }
    plots_popup& plot() { return part<plots_popup>(); }
    plot_chart& chart() { return *plot().findChild<plot_chart*>(); }
    QString caption() { return plot().findChild<elided_label*>("caption")->full_text(); }
    bool wait_until_read() {
        return QTest::qWaitFor([&] { return !plot().is_reading() && !caption().isEmpty(); }, 20000);
    }
    bool says(const QString& words) {
        return QTest::qWaitFor([&] { return caption() == words; });
    }
    void move_to(const QPoint& place) {
        QMouseEvent move(QEvent::MouseMove, place, chart().mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                         {});
        QApplication::sendEvent(&chart(), &move);
    }
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&chart(), static_cast<Qt::Key>(key), modifiers);
    }
};

} // namespace

TEST(plots_popup, zooms_pans_and_reads_a_moment) {
    plotted_log program(1000);
    ASSERT_TRUE(program.wait_until_read());
    EXPECT_TRUE(program.plot().windowTitle().startsWith("Plot - Log : "));
    EXPECT_TRUE(program.says("Averages displayed - 1000 data points"));
    EXPECT_TRUE(QTest::qWaitFor( // until it is drawn
        [&] { return program.chart().accessibleDescription().contains("99.50 kph"); }))
        << program.chart().accessibleDescription().toStdString();

    program.key(Qt::Key_Plus);
    program.key(Qt::Key_Plus);
    EXPECT_EQ(program.chart().span(), (plot_span{99'961, 27'767, 44'427, 1000}));
    program.key(Qt::Key_Home);
    program.key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(program.chart().span().first, 4442);
    auto& pan = *program.plot().findChild<QScrollBar*>("pan");
    ASSERT_TRUE(QTest::qWaitFor([&] { return pan.value() == 4442; }));
    pan.setValue(pan.maximum());
    EXPECT_EQ(program.chart().span().end(), 99'961);
    auto& zoom = *program.plot().findChild<QSlider*>("zoom");
    zoom.setValue(zoom.minimum());
    EXPECT_EQ(program.chart().span().count, 1000);
    zoom.setValue(zoom.maximum());
    EXPECT_TRUE(program.chart().span().is_all());

    // The pointer in the middle of the plot, then the arrow keys.
    const QPoint middle = program.chart().rect().center();
    program.move_to(middle);
    const double pointed = program.chart().cursor();
    ASSERT_GT(pointed, 20'000);
    EXPECT_TRUE(QTest::qWaitFor([&] { return program.caption().startsWith("Values at "); }))
        << program.caption().toStdString();
    program.key(Qt::Key_Right); // to the end of a sweep
    const double moment = program.chart().cursor();
    EXPECT_GT(moment, pointed);
    const auto row = static_cast<int>(moment / 100);
    EXPECT_EQ(moment, 100 * row + 60);
    const QString read = QStringLiteral("Values at %1, sweep %2").arg(clock_text(moment, 1)).arg(row + 1);
    EXPECT_TRUE(program.says(read)) << program.caption().toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return program.chart().accessibleDescription().contains(QStringLiteral("%1.00 kph").arg(row % 200));
    })) << program.chart().accessibleDescription().toStdString();

    const plot_span before = program.chart().span();
    QWheelEvent wheel(middle, program.chart().mapToGlobal(middle), {}, QPoint(0, 240), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&program.chart(), &wheel);
    const plot_span zoomed = program.chart().span();
    EXPECT_LT(zoomed.count, before.count);
    QTest::mousePress(&program.chart(), Qt::LeftButton, {}, middle);
    program.move_to(middle - QPoint(100, 0));
    EXPECT_GT(program.chart().span().first, zoomed.first);
    EXPECT_EQ(program.chart().span().count, zoomed.count);
}

TEST(plots_popup, plots_several_pids_and_shares_the_picture) {
    plotted_log program(50);
    ASSERT_TRUE(program.wait_until_read());
    const auto thumbs = program.plot().findChildren<thumbnail*>();
    ASSERT_EQ(thumbs.size(), 2);
    QTest::mouseClick(thumbs.at(1), Qt::LeftButton, Qt::ControlModifier, QPoint(20, 20));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        const QString words = program.chart().accessibleDescription();
        return words.contains("Engine RPM") && words.contains("Vehicle speed");
    })) << program.chart().accessibleDescription().toStdString();

    auto& saver = *program.plot().findChild<picture_saver*>();
    const QString png = program.folder.filePath("plot.png");
    saver.save_to(png);
    EXPECT_EQ(QImageReader(png).size(), 2 * program.plot().findChild<QFrame*>("picture")->size());
    const QString pdf = program.folder.filePath("plot.pdf");
    saver.save_to(pdf);
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
    QTest::keyClick(&program.chart(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QImageReader(png).size());

    // The next one is as large as this one was left.
    program.plot().resize(777, 555);
    program.plot().close();
    ASSERT_TRUE(QTest::qWaitFor([&] { return program.window->findChild<plots_popup*>() == nullptr; }));
    program.click("plot");
    EXPECT_EQ(program.plot().size(), QSize(777, 555));
    program.click("plot");
    EXPECT_EQ(program.window->findChildren<plots_popup*>().size(), 2) << "several may be open";
}

TEST(plots_popup, says_what_it_reads_and_stops) {
    plotted_log empty(0, "Fuel");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !empty.plot().is_reading(); }));
    EXPECT_EQ(empty.plot().findChild<progress_overlay*>()->shown_text(), "This log holds no data.");

    plotted_log program(1000);
    ASSERT_TRUE(program.plot().is_reading());
    program.plot().findChild<progress_overlay*>()->findChild<QPushButton*>()->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return program.window->findChild<plots_popup*>() == nullptr; }));
}

TEST(plots_popup, is_opened_from_the_preview_and_follows_the_colours) {
    plotted_log program(50);
    ASSERT_TRUE(program.wait_until_read());
    program.plot().close();
    auto& preview = program.part<plot_preview>("preview_plots");
    ASSERT_TRUE(QTest::qWaitFor([&] { return preview.findChildren<thumbnail*>().size() == 2; }));
    QTest::mouseClick(preview.findChildren<thumbnail*>().at(1), Qt::LeftButton, {}, QPoint(20, 20));
    ASSERT_TRUE(program.wait_until_read());
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return program.chart().accessibleDescription().startsWith("Engine RPM"); }));

    const QPalette before = QApplication::palette();
    QPalette dark = before;
    dark.setColor(QPalette::Window, Qt::black);
    QApplication::setPalette(dark);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return program.plot().palette().color(QPalette::Window) == theme::of(dark).ground; }));
    QApplication::setPalette(before);
}

} // namespace brivant
