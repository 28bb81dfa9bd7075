#include "tests/app/running_window.h"

#include "base/anonymity.h"
#include "shell/preferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSettings>

namespace brivant {

namespace {

struct preferences_screen : running_window {
    using running_window::running_window;

    void open() { window->choose_screen(screen_kind::preferences); }
    void type(const char* field, const char* text) {
        auto& line = part<QLineEdit>(field);
        line.setText(QLatin1String(text));
        Q_EMIT line.editingFinished();
    }
    bool is_hidden(const char* name) { return part<QWidget>(name).isHidden(); }
    QString stored(const char* key) {
        return QSettings(core.paths.settings_file, QSettings::IniFormat).value(QLatin1String(key)).toString();
    }
};

} // namespace

TEST(preferences, tells_what_is_wrong_with_a_typed_text) {
    for (const char* good :
         {"192.168.0.10", "obd.local", "fe80::1", "fe80:1111:2222:3333:4444:5555:6666:7777%wlp123s45f67g8"})
        EXPECT_EQ(preferences::address_problem(QLatin1String(good)), QString()) << good;
    for (const char* bad : {"", " ", "192.168.0.10 ", "a b", "[fe80::1]", "fe80::1::2"})
        EXPECT_NE(preferences::address_problem(QLatin1String(bad)), QString()) << bad;
    EXPECT_NE(preferences::address_problem(QString(65, QLatin1Char('x'))), QString());
    for (const char* good : {"1", "35000", "65535", "0035000"})
        EXPECT_EQ(preferences::port_problem(QLatin1String(good)), QString()) << good;
    for (const char* bad : {"", "0", "65536", "-1", "+5", "35000 ", "1e3", "99999999999999999999"})
        EXPECT_NE(preferences::port_problem(QLatin1String(bad)), QString()) << bad;
}

TEST(prefs_view, stores_what_is_right_and_keeps_the_rest) {
    preferences_screen program;
    program.open();
    EXPECT_TRUE(program.part<QRadioButton>("bluetooth").isChecked());
    EXPECT_TRUE(program.is_hidden("wifi_pane"));
    program.part<QRadioButton>("wifi").click();
    EXPECT_FALSE(program.is_hidden("wifi_pane"));
    EXPECT_EQ(program.stored("BV_interface"), "6");
    EXPECT_EQ(program.core.place.interface_kind(), interface_wifi);

    program.type("address", " 10.0.0.5\t"); // pasted
    program.type("port", "70000");
    EXPECT_TRUE(program.is_hidden("address_problem"));
    EXPECT_FALSE(program.is_hidden("port_problem"));
    EXPECT_EQ(program.stored("wifi_IP"), "10.0.0.5");
    EXPECT_EQ(program.stored("wifi_port"), "35000");
    EXPECT_EQ(program.core.place.wifi_ip(), "10.0.0.5");
    EXPECT_EQ(program.core.place.wifi_port(), "35000");

    program.part<QCheckBox>("metric_units").click();
    program.part<QCheckBox>("log_runs").click();
    program.part<QComboBox>("sample_rate").setCurrentIndex(2);
    program.part<QComboBox>("sampling_speed").setCurrentIndex(1);
    EXPECT_TRUE(program.core.defaults.value(setting::metric_units) &&
                program.core.defaults.value(setting::log_runs));
    EXPECT_EQ(program.part<QComboBox>("sample_rate").currentText(), "Every 30 secs");
    EXPECT_EQ(program.stored("BV_sample_rate"), "30");
    EXPECT_EQ(program.stored("BV_sampling_speed"), "1");

    program.part<QCheckBox>("anonymous").click();
    EXPECT_TRUE(is_anonymous() && program.stored("BV_anonymous") == "true");
    program.part<QCheckBox>("anonymous").click();
    EXPECT_FALSE(is_anonymous() || program.stored("BV_anonymous") != "false");

    program.part<QCheckBox>("store_position").click();
    EXPECT_EQ(program.stored("BV_store_position"), QStringLiteral("false"));

    // Typed, and left with a key: stored on the way out.
    program.part<QLineEdit>("port").setText("35001");
    program.press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(program.stored("wifi_port"), "35001");

    // A rate that the file was given by hand stays, whoever looks at it.
    program.core.defaults.set(setting::sample_rate, 7);
    program.open();
    EXPECT_EQ(program.part<QComboBox>("sample_rate").currentText(), "Every 7 secs");
    program.press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(program.stored("BV_sample_rate"), "7");

    program.open();
    program.click("set_defaults");
    program.press(Qt::Key_Escape);
    EXPECT_EQ(program.stored("BV_interface"), "6") << "it was not wanted";
    program.click("set_defaults");
    program.press(Qt::Key_Tab);
    program.press(Qt::Key_Return);
    EXPECT_TRUE(program.part<QRadioButton>("bluetooth").isChecked());
    EXPECT_EQ(program.core.place.interface_kind(), interface_bluetooth);
    EXPECT_EQ(program.stored("BV_log_runs"), "true");
    EXPECT_FALSE(program.core.defaults.value(setting::metric_units));
}

TEST(prefs_view, leaves_the_link_of_the_command_line_until_it_is_changed) {
    preferences_screen program(launch_options::link_choice::demo);
    program.press(Qt::Key_1, Qt::ControlModifier);
    program.press(Qt::Key_F5);
    ASSERT_TRUE(program.wait_until_idle());
    const QString port = program.core.place.wifi_port();

    program.open();
    EXPECT_FALSE(program.is_hidden("run_note"));
    program.part<QCheckBox>("metric_units").click();
    program.window->choose_screen(screen_kind::logs);
    EXPECT_EQ(program.core.place.interface_kind(), interface_wifi);
    EXPECT_EQ(program.core.place.wifi_port(), port);
    EXPECT_EQ(program.link(), link_words::condition::open);

    program.open();
    program.part<QRadioButton>("wifi").click();
    EXPECT_EQ(program.core.place.wifi_port(), "35000");
    EXPECT_EQ(program.link(), link_words::condition::closed) << "it led to the old place";
    EXPECT_TRUE(program.is_hidden("run_note"));
}

} // namespace brivant
