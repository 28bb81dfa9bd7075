#include "app/livedata/actions_view.h"
#include "app/pids/pid_chooser.h"
#include "shell/stop_signals.h"
#include "tests/app/running_window.h"
#include "tests/support/full_disk.h"
#include "tests/support/wait_until.h"

#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <csignal>

namespace brivant {

namespace {

enum mode_index { log_run, fuel, o2_sampling, boost };

struct live_car : running_window {
    explicit live_car(const QString& car = "can11")
        : running_window(launch_options::link_choice::demo, car), results(core.live) {}

    void choose(mode_index index) {
        click(qPrintable(QStringLiteral("mode_%1").arg(static_cast<int>(index))));
    }
    bool runs() { return text_of<QPushButton>("run") == "Stop (Esc)"; }
    bool wait_for_sweeps(qint64 sweeps) {
        return wait_until([&] { return results.sample_cnt >= sweeps; }, 20000);
    }
    bool wait_until_stopped() {
        return wait_until([&] { return !runs(); }, 20000);
    }
    template <class widget>
    QString text_of(const char* name) {
        return part<widget>(name).text();
    }
    bool shows(const char* page) {
        return wait_until([&] {
            return part<QStackedWidget>("chart_stack").currentWidget()->objectName() == QLatin1String(page);
        });
    }
    // The names come with the next frame.
    bool charts(const char* names) {
        return wait_until([&] {
            return part<chart_picture>("chart").accessibleName() == QStringLiteral("Chart: ") + names;
        });
    }
    QString second_gauge() { return part<gauge_picture>("gauge_2").accessibleName(); }

    live_results& results;
};

void click(QWidget& at, Qt::MouseButton button = Qt::LeftButton,
           Qt::KeyboardModifiers keys = Qt::NoModifier) {
    QTest::mouseClick(&at, button, keys, QPoint(40, 40));
    if (button == Qt::RightButton) { // as the platform sends it
        QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(40, 40), at.mapToGlobal(QPoint(40, 40)));
        QCoreApplication::sendEvent(&at, &menu);
    }
}

class paint_counter : public QObject {
public:
    explicit paint_counter(QWidget& watched) { watched.installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

TEST(actions_view, shows_a_run_and_leaves_it_standing) {
    live_car car;
    EXPECT_TRUE(car.shows("empty_page"));
    EXPECT_TRUE(car.text_of<QLabel>("empty_text").startsWith("Press Start (F5)"));
    EXPECT_TRUE(car.part<QWidget>("zoom_row").isHidden());
    EXPECT_FALSE(car.part<QToolButton>("save_picture").isEnabled());

    car.press(Qt::Key_F5);
    EXPECT_TRUE(car.runs());
    ASSERT_TRUE(car.wait_for_sweeps(1));
    EXPECT_TRUE(car.shows("chart"));
    ASSERT_TRUE(car.wait_for_sweeps(25));
    EXPECT_TRUE(wait_until([&] { return car.part<QWidget>("zoom_row").isVisible(); }));
    auto& engine_speed = car.part<thumbnail>("thumb_0C");
    EXPECT_TRUE(wait_until([&] { return engine_speed.accessibleDescription().contains(u"RPM"); }));
    EXPECT_TRUE(engine_speed.accessibleDescription().contains(u"max 11")); // a cold engine idles at 1130 RPM

    car.press(Qt::Key_Escape);
    EXPECT_FALSE(car.runs());
    const qsizetype rows = car.results.cur_log_points.rows();
    EXPECT_GT(rows, 21);
    car.press(Qt::Key_1, Qt::ControlModifier); // and outlives the screen
    car.press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(car.results.cur_log_points.rows(), rows);
    EXPECT_TRUE(car.shows("chart"));
    EXPECT_TRUE(car.part<QWidget>("zoom_row").isVisible());
    EXPECT_TRUE(car.text_of<QLabel>("run_time").startsWith("00:00:"));

    car.press(Qt::Key_F5); // a new run begins empty
    EXPECT_LT(car.results.cur_log_points.rows(), 3);
    // A fast adapter may fill it before the next frame.
    EXPECT_TRUE(wait_until(
        [&] { return car.part<QWidget>("zoom_row").isHidden() || car.results.cur_log_points.rows() > 21; }));
}

TEST(actions_view, draws_once_a_frame_however_fast_replies_come) {
    live_car car;
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(10));
    ASSERT_TRUE(car.shows("chart"));
    paint_counter chart(car.part<chart_picture>("chart"));
    paint_counter hidden(car.part<o2_picture>("o2"));
    QElapsedTimer time;
    time.start();
    const qint64 before = car.results.sample_cnt;
    ASSERT_TRUE(car.wait_for_sweeps(before + 300));
    constexpr int frame_ms = 1000 / 30;
    EXPECT_GT(chart.paints, 1);
    EXPECT_LE(chart.paints, time.elapsed() / frame_ms + 2);
    EXPECT_EQ(hidden.paints, 0);
}

TEST(actions_view, takes_thumbnails_for_chart_group_and_gauge) {
    live_car car;
    auto& speed = car.part<thumbnail>("thumb_0D");
    auto& throttle = car.part<thumbnail>("thumb_11");
    auto& engine_speed = car.part<thumbnail>("thumb_0C");
    EXPECT_EQ(car.second_gauge(), "Gauge: Throttle position");
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(2));

    click(engine_speed);
    EXPECT_TRUE(car.charts("Engine RPM"));
    EXPECT_EQ(car.part<gauge_picture>("gauge_1").accessibleName(), "Gauge: Engine RPM");
    click(speed, Qt::LeftButton, Qt::ControlModifier);
    click(throttle, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_TRUE(car.charts("Vehicle speed, Throttle position, Engine RPM"));
    click(engine_speed, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_TRUE(car.charts("Vehicle speed, Throttle position"));
    click(speed, Qt::LeftButton, Qt::ControlModifier); // one alone is no group
    EXPECT_TRUE(car.charts("Throttle position"));
    click(engine_speed, Qt::RightButton);
    EXPECT_EQ(car.second_gauge(), "Gauge: Engine RPM");
    EXPECT_TRUE(car.charts("Throttle position"));
    car.press(Qt::Key_Escape);
    car.press(Qt::Key_F5); // another run keeps the choice
    EXPECT_EQ(car.second_gauge(), "Gauge: Engine RPM");

    // The same by keys.
    throttle.setFocus();
    car.press(Qt::Key_Left);
    EXPECT_TRUE(speed.hasFocus());
    car.press(Qt::Key_Return);
    EXPECT_TRUE(car.charts("Vehicle speed"));
    car.press(Qt::Key_Right);
    car.press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(car.charts("Vehicle speed, Throttle position"));
    car.press(Qt::Key_G);
    EXPECT_EQ(car.second_gauge(), "Gauge: Throttle position");
}

TEST(actions_view, ends_the_run_when_the_mode_changes) {
    live_car car;
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(3));
    car.choose(fuel);
    EXPECT_FALSE(car.runs());
    EXPECT_TRUE(car.shows("empty_page"));
    EXPECT_FALSE(car.part<QPushButton>("pids").isEnabled());
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(3));
    EXPECT_TRUE(car.charts("Fuel economy"));

    car.choose(o2_sampling); // starts by itself
    EXPECT_TRUE(car.runs());
    EXPECT_TRUE(car.shows("o2"));
    ASSERT_TRUE(car.wait_for_sweeps(3));
    auto& picture = car.part<o2_picture>("o2");
    EXPECT_TRUE(wait_until([&] { return picture.accessibleDescription().startsWith(u"S11 0."); }));
    EXPECT_TRUE(wait_until([&] { return picture.accessibleDescription().contains(u"S22 0."); }));
    car.click("views_1");
    EXPECT_TRUE(car.shows("chart"));
    car.click("views_2");
    EXPECT_TRUE(car.shows("o2"));
    car.press(Qt::Key_Escape);
    car.press(Qt::Key_1, Qt::ControlModifier);
    car.press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(car.shows("o2"));
    EXPECT_TRUE(wait_until([&] {
        return car.part<o2_picture>("o2").accessibleDescription().startsWith(u"S11 0.");
    })) << "what was read outlives the screen";

    car.choose(boost);
    EXPECT_FALSE(car.runs());
    EXPECT_TRUE(car.shows("empty_page"));
    EXPECT_TRUE(car.part<QPushButton>("views_2").isHidden());
}

TEST(actions_view, shows_a_tile_a_value) {
    live_car car;
    car.click("views_0");
    EXPECT_TRUE(car.shows("empty_page"));
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(25));
    EXPECT_TRUE(car.shows("tiles"));
    EXPECT_TRUE(car.part<QWidget>("thumbs").isHidden());
    auto& speed = car.part<value_tile>("tile_0D");
    auto& engine_speed = car.part<value_tile>("tile_0C");
    EXPECT_TRUE(wait_until([&] { return engine_speed.accessibleDescription().contains(u"max 1"); }));
    EXPECT_TRUE(car.part<QLabel>("rate").isVisible());
    speed.setFocus();
    car.press(Qt::Key_Right);
    EXPECT_FALSE(speed.hasFocus());
    car.part<dashboard>("tiles").set_silent_since(QTime(19, 4, 12));
    car.press(Qt::Key_Escape);
    EXPECT_FALSE(car.part<QLabel>("rate").isVisible()) << "no rate of a run that has ended";
    EXPECT_TRUE(
        wait_until([&] { return engine_speed.accessibleDescription().endsWith(u"nothing since 19:04:12"); }));
    engine_speed.click();
    EXPECT_TRUE(car.shows("chart"));
    EXPECT_TRUE(car.charts("Engine RPM"));
    const auto& zoom = car.part<QSlider>("zoom");
    const auto rows = static_cast<double>(car.results.cur_log_points.rows());
    EXPECT_GE(zoom.minimum() * rows / zoom.maximum(), 20) << "as its label says";
}

TEST(actions_view, says_what_a_car_lacks) {
    live_car car("iso9141"); // without manifold pressure
    car.choose(boost);
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_until_stopped());
    EXPECT_EQ(car.part<status_strip>().status_text(),
              "One or more PIDs needed not available for this vehicle");
    EXPECT_TRUE(wait_until([&] {
        return car.text_of<QLabel>("empty_text").contains(u"Intake manifold absolute pressure (0B)");
    }));
    EXPECT_FALSE(car.text_of<QLabel>("empty_text").contains(u"0A"));
    EXPECT_EQ(car.results.sample_cnt, 0);
}

TEST(actions_view, stores_a_run_when_the_person_says_so) {
    live_car car;
    auto& store_runs = car.part<QCheckBox>("store_runs");
    EXPECT_FALSE(store_runs.isChecked());
    store_runs.click();
    EXPECT_TRUE(car.core.defaults.value(setting::log_runs));
    car.press(Qt::Key_F5);
    EXPECT_FALSE(store_runs.isEnabled());
    ASSERT_TRUE(car.wait_for_sweeps(5));
    car.press(Qt::Key_Escape);
    const QString stored = QStringLiteral("%1 stored").arg(car.results.log_sample_cnt);
    EXPECT_GE(car.results.log_sample_cnt, 5);
    EXPECT_TRUE(wait_until([&] { return car.text_of<QLabel>("stored") == stored; }));
    store_runs.click();
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(2));
    EXPECT_EQ(car.text_of<QLabel>("stored"), "not stored");
    car.press(Qt::Key_Escape);

    store_runs.click();
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(2));
    const stop_signals closing([&car] { car.window->close(); });
    std::raise(SIGTERM); // as at the end of the session
    EXPECT_TRUE(wait_until([&] { return car.window->isHidden(); }));
    const QString info = car.core.db.retrieve_from_DB("SELECT INFO FROM LOGGIES ORDER BY LOG_ID DESC")[0][0];
    EXPECT_EQ(info, QStringLiteral("%1 Sample points  ").arg(car.results.log_sample_cnt));
}

TEST(actions_view, keeps_a_run_that_has_ended_and_stores_from_a_crossing_on) {
    live_car car;
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(5));
    EXPECT_FALSE(car.part<QPushButton>("store_now").isVisible());
    car.press(Qt::Key_Escape);
    car.click("store_now");
    EXPECT_TRUE(wait_until([&] { return car.results.log_sample_cnt == car.results.sample_cnt; }));
    EXPECT_FALSE(car.part<QPushButton>("store_now").isVisible());

    car.click("store_when");
    car.part<QComboBox>("trigger_when_pid").setCurrentIndex(2);
    car.click("trigger_set");
    EXPECT_TRUE(car.part<QLineEdit>("trigger_when_value").hasFocus()) << "it needs a number";
    car.part<QLineEdit>("trigger_when_value").setText("100000");
    car.part<QCheckBox>("trigger_ends").click();
    car.part<QLineEdit>("trigger_until_value").setText("-1");
    car.click("trigger_set");
    EXPECT_EQ(car.text_of<QPushButton>("store_when"), "Store when 0C>100000...");
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(5));
    EXPECT_FALSE(car.results.is_stored);
    car.press(Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the sheet before
    car.click("store_when");
    EXPECT_EQ(car.part<QLineEdit>("trigger_until_value").text(), "-1");
    car.click("trigger_none");
    EXPECT_TRUE(car.part<QCheckBox>("store_runs").isVisible());
}

TEST(actions_view, takes_another_set_of_pids) {
    live_car car;
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(2));
    car.click("pids");
    auto& sheet = car.part<pid_sheet>();
    car.core.toolies.save_pids_2_sample_prefs({"0C|7E8", "0B|7E8"});
    Q_EMIT sheet.changed();
    EXPECT_FALSE(car.runs());
    EXPECT_EQ(car.window->findChildren<thumbnail*>().size(), 2);
    sheet.close_sheet();
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(2));
    EXPECT_TRUE(car.charts("Engine RPM"));
}

TEST(actions_view, copies_the_picture_and_tells_when_it_cannot_be_saved) {
    live_car car;
    car.press(Qt::Key_F5);
    ASSERT_TRUE(car.wait_for_sweeps(3));
    ASSERT_TRUE(car.shows("chart"));
    car.part<QPushButton>("run").setFocus();
    car.press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), 2 * car.part<chart_picture>("chart").size());
    for (const QString name : {"chart.png", "chart.pdf"}) {
        QFile picture(car.folder.filePath(name));
        car.part<picture_saver>().save_to(picture.fileName());
        EXPECT_FALSE(car.part<notice_banner>().isVisible());
        const qint64 whole = picture.size();
        EXPECT_GT(whole, 1000);
        {
            const full_disk full(1000);
            car.part<picture_saver>().save_to(picture.fileName());
        }
        EXPECT_TRUE(car.part<notice_banner>().shown_text().contains(name + " cannot be written"));
        EXPECT_EQ(picture.size(), whole) << "the old one stays";
        car.part<notice_banner>().dismiss();
    }
}

} // namespace brivant
