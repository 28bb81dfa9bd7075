#include "tests/app/running_window.h"
#include "tests/support/other_program.h"

#include "app/logs/export_progress.h"
#include "app/logs/logs_view.h"
#include "app/logs/plots_popup.h"
#include "app/look/elided_label.h"
#include "base/string_table.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTextBrowser>

namespace brivant {

namespace {

struct opened_logs : running_window {
    int store(const char* type, const QStringList& chunks) {
        const int id = core.db.add_2_LOG_DB(QLatin1String(type), core.car.cur_veh_id(), "sample points");
        for (int line = 0; line < chunks.size(); ++line)
            core.db.append_2_LOG_DB(chunks.at(line), QString(), line, id);
        return id;
    }
    QTableView& table() { return part<QTableView>("logs_table"); }
    QString words() { return part<QLabel>("empty_text").text(); }
    // Opens the screen, or reads the list again, until `rows` are shown.
    void open(int rows) {
        press(Qt::Key_4, Qt::ControlModifier);
        wait_for(rows);
    }
    void wait_for(int rows) {
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return table().model()->rowCount() == rows && shows(rows > 0); }, 5000));
    }
    bool shows(bool list) { return table().isVisible() == list; }
    bool wait_for_status(const QString& text) {
        return QTest::qWaitFor([&] { return part<elided_label>("status").full_text() == text; });
    }
    QString told() { return part<notice_banner>().shown_text(); }
    void answer(Qt::Key key) { QTest::keyClick(window->focusWidget(), key); }
};

} // namespace

TEST(logs_view, says_why_the_list_is_empty) {
    opened_logs program;
    program.open(0);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return program.words().startsWith("No logs are stored for Cur Veh. yet"); }));
    EXPECT_TRUE(program.words().contains("off in the preferences"));
    program.click("open_prefs");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return program.window->current_screen() == screen_kind::preferences; }));

    program.store("DTC", {"text"});
    program.open(1);
    program.click("kind_4");
    program.wait_for(0);
    EXPECT_TRUE(program.words().startsWith("No logs of this kind."));
    EXPECT_FALSE(program.part<QPushButton>("open_prefs").isVisible());
    program.click("kind_1");
    program.wait_for(1);

    program.part<QPushButton>("kind_1").setFocus(); // by Tab as it is read: the kinds, how recent, the list
    for (const char* next : {"recency", "logs_table", "preview"}) {
        program.press(Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String(next));
    }
}

TEST(logs_view, lists_and_previews) {
    opened_logs program;
    other_program(program.core.db.path())
        .runs("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 700) INSERT INTO "
              "LOGGIES "
              "(VEH_ID, LOG_TYPE, INFO, time_stamp) SELECT 1, 'DTC', '', '2020-01-01 00:00:00' FROM n");
    const int run = program.store("Log", {"410C1AF8,410D3C", "410C1B00,410D3C"});
    program.open(701);
    EXPECT_EQ(program.part<QLabel>("count").text(), "701 Logs");
    EXPECT_TRUE(program.wait_for_status("All logs (701 total)"));

    auto& recency = program.part<QComboBox>("recency");
    recency.setCurrentIndex(2);
    Q_EMIT recency.activated(2);
    program.wait_for(701);
    EXPECT_TRUE(program.wait_for_status("Last month(701)  (701 total)"));
    recency.setCurrentIndex(1);
    Q_EMIT recency.activated(1);
    program.wait_for(10);

    program.click("kind_2");
    program.wait_for(1);
    EXPECT_EQ(program.rows_of("logs_table").first().section(QLatin1Char('\t'), 0, 0), QString::number(run));
    QTest::keyClick(&program.table(), Qt::Key_Down); // nothing is selected when the list was read
    auto& preview = program.part<QPlainTextEdit>("preview");
    ASSERT_TRUE(QTest::qWaitFor([&] { return preview.toPlainText().contains("1728.00"); }));
    auto& figures = program.part<QLabel>("preview_figures");
    EXPECT_TRUE(QTest::qWaitFor([&] { return figures.isVisible(); }));
    EXPECT_TRUE(figures.text().contains("Distance:") && !figures.text().contains("Fuel"))
        << figures.text().toStdString();

    QTest::keyClick(&program.table(), Qt::Key_Return); // as it is stored
    EXPECT_TRUE(program.part<help_panel>().isVisible());
    EXPECT_TRUE(program.part<help_panel>().findChild<QTextBrowser*>()->toPlainText().contains("410C1AF8"));
    program.press(Qt::Key_Escape);
    program.table().clearSelection();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !figures.isVisible(); }));
}

TEST(logs_view, exports_runs_and_shows_reports) {
    opened_logs program;
    program.store("DTC", {"P0133 - <b>\nsecond"});
    program.store("Log", {"410C1AF8"});
    program.open(2);
    const QDir folder(program.core.paths.documents + "/loggies");
    program.click("output_folder");
    EXPECT_EQ(program.told(), "No exported files yet");

    auto& view = program.part<logs_view>();
    program.click("kind_1");
    program.wait_for(1);
    program.table().selectRow(0);
    view.handle_export(false);
    auto& report = program.part<QTextBrowser>("report_text");
    EXPECT_EQ(report.toPlainText(), "sample points\nP0133 - <b>\nsecond");
    EXPECT_FALSE(folder.exists());
    program.click("report_close");

    program.click("kind_0");
    program.wait_for(2);
    program.part<QCheckBox>("all_files").click();
    view.handle_export(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !program.part<export_progress>().is_running(); }));
    EXPECT_EQ(folder.entryList({"*_Log.txt"}, QDir::Files).size(), 1);
    EXPECT_EQ(folder.entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(
        program.part<export_progress>().words().startsWith("Exported to loggies folder in Documents\n\n"));

    QTest::keyClick(&program.table(), Qt::Key_Return); // all that are selected, one below the other
    const QString both = program.part<help_panel>().findChild<QTextBrowser*>()->toPlainText();
    EXPECT_TRUE(both.contains("P0133 - <b>") && both.contains("410C1AF8"));
    program.press(Qt::Key_Escape);

    program.click("copy");
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->urls().size(), 1);
    EXPECT_TRUE(program.told().contains("One of the selected logs has no file"));
    program.table().clearSelection();
    program.part<notice_banner>().dismiss();
    program.click("copy");
    EXPECT_EQ(program.told(), "Item(s) must be selected to proceed");
}

TEST(logs_view, tells_how_many_plots_it_opens) {
    opened_logs program;
    for (int i = 0; i < 9; ++i)
        program.store("Log", {"410C1AF8"});
    program.open(9);
    program.part<QCheckBox>("all_files").click();
    program.click("plot");
    EXPECT_EQ(program.window->findChildren<plots_popup*>().size(), 8);
    EXPECT_TRUE(program.told().startsWith("No more windows are opened at once."));
}

TEST(logs_view, deletes_what_was_selected_after_a_yes) {
    opened_logs program;
    for (int i = 0; i < 4; ++i)
        program.store("DTC", {"text"});
    program.open(4);
    program.table().selectRow(1);
    QTest::keyClick(&program.table(), Qt::Key_Delete);
    EXPECT_TRUE(program.part<question_sheet>().is_open());
    program.press(Qt::Key_Escape);
    EXPECT_EQ(program.table().model()->rowCount(), 4);

    const QString kept = program.table().model()->index(0, 0).data().toString();
    program.table().selectRow(1);
    QTest::keyClick(&program.table(), Qt::Key_Down, Qt::ShiftModifier);
    program.click("delete_logs");
    for (QPushButton* button : program.part<question_sheet>().findChildren<QPushButton*>()) {
        if (button->text() == localised("LBL_YES"))
            button->click();
    }
    program.wait_for(2);
    EXPECT_EQ(program.table().model()->index(0, 0).data().toString(), kept);
    EXPECT_TRUE(program.part<QPushButton>("stop").isHidden());
}

} // namespace brivant
