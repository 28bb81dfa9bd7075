#include "app/first_start_sheet.h"
#include "base/string_table.h"
#include "tests/app/running_window.h"

#include <QAction>
#include <QFile>
#include <QMenu>
#include <QRadioButton>

namespace brivant {

TEST(main_window, asks_once_and_is_answered_once) {
    running_window program;
    QList<std::pair<int, bool>> answers;
    const auto ask = [&](int question) {
        program.window->ask_yes_no("Sure?", QString(), [&answers, question](bool yes) {
            answers += {question, yes};
        });
    };
    ask(1);
    ask(2); // takes the place of the first
    program.press(Qt::Key_Escape);
    ask(3);
    program.press(Qt::Key_5, Qt::ControlModifier);
    ask(4);
    program.window->close();
    program.window.reset();
    const QList<std::pair<int, bool>> expected{{1, false}, {2, false}, {3, false}, {4, false}};
    EXPECT_EQ(answers, expected);
}

TEST(main_window, keeps_notices_until_dismissed_or_superseded) {
    running_window program;
    auto& banner = program.part<notice_banner>();
    program.window->show_message(QString(), "of live data");
    program.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(banner.count(), 0) << "it is of no use on another screen";
    for (const char* text : {"first", "second", "first"})
        program.window->show_message(QString(), QLatin1String(text));
    EXPECT_EQ(banner.count(), 2);
    program.press(Qt::Key_Escape);
    EXPECT_EQ(banner.shown_text(), "first");
    banner.dismiss();
    EXPECT_EQ(banner.shown_text(), "second");

    program.window->show_busy(true); // another operation begins
    EXPECT_EQ(banner.count(), 0);
    EXPECT_FALSE(banner.isVisible());

    program.window->show_toast(localised("TOAST_WIFI_CONN_FAILED")); // it goes by itself
    EXPECT_TRUE(banner.shown_text().startsWith("No link"));
    program.press(Qt::Key_5, Qt::ControlModifier); // the preferences are where it can be mended
    EXPECT_EQ(banner.count(), 1);
    banner.dismiss();

    program.press(Qt::Key_4, Qt::ControlModifier); // what the logs told is of no use elsewhere
    for (const char* text : {"of the logs", "of the next attempt"})
        program.window->show_message(QString(), QLatin1String(text));
    EXPECT_EQ(banner.shown_text(), "of the next attempt");
    program.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(banner.count(), 0);
}

TEST(main_window, shows_texts_of_the_car_as_plain_text_in_one_line) {
    running_window program;
    const QString reply = "<b>7E8</b>\n<img src=\"/etc/hostname\">";
    program.window->show_status(reply);
    auto& label = program.part<elided_label>("status");
    ASSERT_TRUE(QTest::qWaitFor([&] { return label.full_text() == reply; })); // at the next frame
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_FALSE(label.text().contains(QLatin1Char('\n')));
    EXPECT_FALSE(label.toolTip().contains("<img"));
    EXPECT_TRUE(label.toolTip().contains("hostname"));
}

TEST(main_window, follows_the_palette_of_the_desktop) {
    running_window program;
    const QPalette before = QApplication::palette();
    const auto is_dark = [&] { return program.window->palette().color(QPalette::Window).lightness() < 128; };
    EXPECT_FALSE(is_dark());
    QPalette night = before;
    night.setColor(QPalette::Window, Qt::black);
    QApplication::setPalette(night);
    EXPECT_TRUE(QTest::qWaitFor(is_dark));
    QApplication::setPalette(before);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !is_dark(); }));
}

TEST(main_window, remembers_its_size) {
    QTemporaryDir profile;
    for (const int run : {1, 2}) {
        program_core core(running_window::with(launch_options::link_choice::as_stored, profile.path()));
        main_window window(core);
        window.start();
        if (run == 1)
            window.resize(1000, 640);
        window.show();
        EXPECT_EQ(window.size(), QSize(1000, 640));
        window.close();
    }
}

TEST(main_window, greets_once) {
    QTemporaryDir profile;
    for (const int run : {1, 2}) {
        program_core core(running_window::with(launch_options::link_choice::as_stored, profile.path()));
        main_window window(core);
        window.start();
        window.show();
        auto* greeting = window.findChild<first_start_sheet*>();
        ASSERT_EQ(greeting != nullptr, run == 1);
        if (!greeting)
            break;
        EXPECT_TRUE(greeting->isVisible());
        greeting->findChild<QRadioButton*>("first_metric")->click();
        greeting->findChild<QPushButton*>("first_later")->click();
        EXPECT_TRUE(core.defaults.value(setting::metric_units));
        window.close();
    }
    program_core given(running_window::with(launch_options::link_choice::simulate, profile.path()));
    EXPECT_FALSE(first_start_sheet::is_due(given));
}

TEST(main_window, another_vehicle_is_one_click_away) {
    running_window program;
    const int other = program.core.vehicles.saveCurCarVals(-1, {"Van", "2001", "2.0"}, QImage()).id;
    ASSERT_GT(other, 0);
    program.part<vehicle_button>().click();
    QMenu* menu = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] { return (menu = program.part<vehicle_button>().findChild<QMenu*>()); }));
    for (QAction* action : menu->actions())
        if (action->text() == "Van")
            action->trigger();
    menu->close();
    EXPECT_TRUE(program.core.vehicles.is_current(other));
    EXPECT_EQ(program.part<vehicle_button>().accessibleName(), "Current vehicle Van");
    program.press(Qt::Key_F11);
    EXPECT_TRUE(program.window->isFullScreen());
    program.part<QAction>("menu_full_screen").trigger();
    EXPECT_FALSE(program.window->isFullScreen());
}

TEST(help_panel, opens_with_f1_and_loads_only_artwork) {
    running_window program;
    auto& help = program.part<help_panel>();
    program.press(Qt::Key_F1);
    EXPECT_TRUE(help.isVisible());
    program.press(Qt::Key_F1);
    EXPECT_FALSE(help.isVisible());
    program.press(Qt::Key_F1);
    program.press(Qt::Key_Escape);
    EXPECT_FALSE(help.isVisible());

    help_browser browser;
    const auto load = [&browser](const QString& address, int type = QTextDocument::ImageResource) {
        return browser.loadResource(type, QUrl(address));
    };
    EXPECT_FALSE(load("qrc:/artwork/prefs_wifi.gif").value<QImage>().isNull());
    const QString other = "qt-project.org/qmessagebox/images/qtlogo-64.png";
    ASSERT_TRUE(QFile::exists(QStringLiteral(":/") + other));
    for (const QString& refused :
         QStringList{"file:///etc/hostname", "/etc/hostname", "qrc:/" + other, "qrc:/artwork/../" + other,
                     "http://127.0.0.1/artwork/help.png"})
        EXPECT_FALSE(load(refused).isValid()) << refused.toStdString();
    EXPECT_FALSE(load("qrc:/artwork/help.png", QTextDocument::StyleSheetResource).isValid());
}

} // namespace brivant
