#include "app/livedata/actions_view.h"
#include "app/logs/plots_popup.h"
#include "base/console_log.h"
#include "tests/app/running_window.h"

#include <QDir>
#include <QListWidget>
#include <QRadioButton>

#include <cstdio>

// The pictures of the README, made of the program itself on its demo cars: packaging/screenshots/make.

using namespace brivant;

namespace {

enum rail_row { codes, pending, vehicle_page, mode6 };

class album {
public:
    explicit album(const QString& its_folder) : folder(its_folder) {}

    void take_all() {
        take("diagnostics-light", light, "can11", [](running_window& car) { read_all(car); });
        take("diagnostics-dark", dark, "can11", [](running_window& car) { read_all(car); });
        take("standard-reading-light", light, "can11-many-codes", [](running_window& car) { read_all(car); });
        take("mode6-light", light, "can11", [](running_window& car) { read_page(car, mode6); });
        take("mode6-dark", dark, "can11", [](running_window& car) { read_page(car, mode6); });
        take("pending-light", light, "can11", [](running_window& car) { read_page(car, pending); });
        take("vehicle-light", light, "can11", [](running_window& car) { read_page(car, vehicle_page); });
        take("live-log-dark", dark, "can11", [](running_window& car) { run(car, 0); });
        take("live-log-light", light, "can11", [](running_window& car) { run(car, 0); });
        take("live-fuel-light", light, "can11", [](running_window& car) { run(car, 1); });
        take("live-o2-dark", dark, "can11", [](running_window& car) { run(car, 2); });
        take("live-boost-dark", dark, "can11", [](running_window& car) { run(car, 3); });
        take("console-light", light, "can11", send);
        take("console-dark", dark, "can11", send);
        take("logs-light", light, "can11", store);
        take("logs-dark", dark, "can11", store);
        take("prefs-general-light", light, "can11", [](running_window& car) { open(car, Qt::Key_5); });
        take("prefs-pids-dark", dark, "can11", [](running_window& car) { open_tab(car, 1); });
        take("prefs-vehicles-light", light, "can11", [](running_window& car) { open_tab(car, 2); });
        take("links-light", light, "can11", show_links);
    }

private:
    static constexpr bool light = false, dark = true;
    static constexpr QSize size{1280, 768};
    static constexpr int run_ms = 12000;
    static constexpr int settle_ms = 400;
    static constexpr int answered_ms = 2500;
    static constexpr int kind_column = 2;

    static void open(running_window& car, Qt::Key screen) {
        car.press(screen, Qt::ControlModifier);
        QTest::qWait(settle_ms);
    }
    static void open_tab(running_window& car, int index) {
        open(car, Qt::Key_5);
        car.part<QTabWidget>("tabs").setCurrentIndex(index);
    }
    static void read_all(running_window& car) {
        open(car, Qt::Key_1);
        car.click("read_all");
        QTest::qWait(settle_ms);
        must(QTest::qWaitFor([&] { return car.part<QPushButton>("stop").isHidden(); }, 60000));
    }
    static void read_page(running_window& car, rail_row page) {
        open(car, Qt::Key_1);
        car.part<QListWidget>("rail").setCurrentRow(page);
        const char* stops[] = {"stop", "pending_stop", "vehicle_stop", "mode6_stop"};
        car.press(Qt::Key_F5);
        QTest::qWait(settle_ms);
        must(QTest::qWaitFor([&] { return car.part<QPushButton>(stops[page]).isHidden(); }, 60000));
    }
    static void run(running_window& car, int mode) {
        open(car, Qt::Key_2);
        car.part<segments>("mode").at(mode).click();
        car.press(Qt::Key_F5);
        QTest::qWait(run_ms);
    }
    static void send(running_window& car) {
        open(car, Qt::Key_3);
        for (const char* command : {"AT I", "AT RV", "01 0C", "09 02"}) {
            QTest::keyClicks(car.window->focusWidget(), QLatin1String(command));
            QTest::keyClick(car.window->focusWidget(), Qt::Key_Return);
            QTest::qWait(answered_ms);
        }
    }
    static void store(running_window& car) {
        car.core.defaults.choose(setting::log_runs, true);
        read_all(car);
        run(car, 0);
        car.press(Qt::Key_Escape);
        QTest::qWait(settle_ms);
        open(car, Qt::Key_4);
        QTest::qWait(3 * settle_ms);
        auto& list = car.part<QTableView>("logs_table");
        const QAbstractItemModel& rows = *list.model();
        const QModelIndexList runs = rows.match(rows.index(0, kind_column), Qt::DisplayRole,
                                                QStringLiteral("Log"), 1, Qt::MatchExactly);
        must(!runs.isEmpty());
        list.selectRow(runs.first().row());
        must(QTest::qWaitFor([&] { return car.part<QPushButton>("plot").isEnabled(); }));
    }
    static void show_links(running_window& car) {
        car.core.defaults.set(
            setting::known_adapters,
            QStringList{
                R"({"where":"usb:/dev/serial/by-id/usb-FTDI","name":"Cable","greeting":"ELM327 v1.4b","used":"2026-11-02"})",
                R"({"where":"ble:00:1D:A5:68:98:8B","name":"V-LINK","greeting":"ELM327 v2.2","used":"2026-11-20"})"});
        open(car, Qt::Key_1);
        car.press(Qt::Key_L, Qt::ControlModifier);
    }
    static void must(bool has_come) {
        if (!has_come)
            throw std::runtime_error("a reading did not end");
    }

    void take(const char* name, bool is_dark, const QString& car,
              const std::function<void(running_window&)>& go_there) {
        QApplication::setPalette(is_dark ? QPalette(Qt::black) : QPalette(Qt::white));
        running_window program(launch_options::link_choice::demo, car, answer_ms);
        program.window->resize(size);
        go_there(program);
        QTest::qWait(settle_ms);
        must(program.window->grab().save(folder + u'/' + QLatin1String(name) + QStringLiteral(".png")));
        std::printf("%s\n", name);
        std::fflush(stdout);
        take_plot(name, program);
    }
    // The window of a stored run stands over the logs.
    void take_plot(const char* name, running_window& program) {
        const QString its_name = QString::fromLatin1(name);
        if (!its_name.startsWith(QLatin1String("logs-")))
            return;
        program.click("plot");
        QTest::qWait(2 * settle_ms);
        for (QWidget* one : QApplication::topLevelWidgets()) {
            if (auto* plot = qobject_cast<plots_popup*>(one); plot && plot->isVisible())
                must(plot->grab().save(folder + u'/' + QString(its_name).replace("logs", "plot") + ".png"));
        }
    }

    static constexpr int answer_ms = 10; // as the demo has it
    const QString folder;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    silence_console_log();
    if (argc != 2 || !QDir(QString::fromLocal8Bit(argv[1])).exists())
        return std::fprintf(stderr, "Which folder?\n"), 2;
    try {
        album(QDir(QString::fromLocal8Bit(argv[1])).absolutePath()).take_all();
    } catch (const std::exception& problem) {
        return std::fprintf(stderr, "%s\n", problem.what()), 1;
    }
    return 0;
}
