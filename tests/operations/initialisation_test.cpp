#include "base/console_log.h"
#include "operations/inner_process_pid_support.h"
#include "tests/support/conversation.h"
#include "tests/support/print_qt.h"
#include "tests/support/test_file.h"

#include <gtest/gtest.h>

namespace brivant {

// What every operation stands on, as conversations with talks of the test's own. Whole initialisations with
// an operation behind them are played in tests/diagnostics.

namespace {

class plain_car : public car_talk {
public:
    using car_talk::car_talk;
    void begin(std::function<talk()> what) {
        start({1, QString(), QStringLiteral("left: %@"), nullptr, std::move(what)});
    }
};

talk set_up(car_talk& car) {
    co_await car.ready(QString());
}

talk list_tests(car_talk& car, told_facts& found_out, QString& found) {
    found_out.protocol = 6;
    found_out.headers = found_out.ready = true;
    obd_groups ecus;
    co_await inner_process_pid_support(car, QStringLiteral("06"), ecus);
    found = text_of(ecus);
}

struct operation_bench : adapter_bench {
    plain_car car{state, link, toolies, view};
    QString ended = "no";
    QString found = "nothing yet"; // by a loop for another service
    bool told_ready = false;       // to whom it may concern, when the condition of the link last changed

    operation_bench() {
        link.set_controller(&car);
        view.events.clear();
        car.operation_ended = [this](bool done) { ended = done ? "done" : "failed"; };
        actions["start"] = [this](const QString&) { begin([this] { return set_up(car); }); };
        actions["loop"] = [this](const QString&) {
            begin([this] { return list_tests(car, found_out, found); });
        };
        actions["lose_database"] = [this](const QString&) {
            EXPECT_TRUE(QFile::remove(profile.db.path()) && QDir().mkpath(profile.db.path()));
            EXPECT_TRUE(redirect_console_log(profile.folder.filePath("log")));
        };
        QObject::connect(&link, &adapter_link::condition_changed, &link,
                         [this] { told_ready = found_out.ready; });
        facts["told"] = [this] { return told_ready ? "ready" : "not ready"; };
        facts["steps"] = [this] { return link.start().sentence(); };
        facts["found"] = [this] { return found; };
        facts["ended"] = [this] { return ended; };
        facts["logged"] = [this] { // of the initialisation's own lines the last
            silence_console_log();
            const QString text = QString::fromUtf8(bytes_of(profile.folder.filePath("log")));
            return text.sliced(text.lastIndexOf("reacCods>m::")).section('\n', 0, 0);
        };
    }
    ~operation_bench() { link.set_controller(nullptr); }
    void begin(std::function<talk()> what) {
        ended = "no";
        car.begin(std::move(what));
        clock.advance(800);
    }
};

} // namespace

TEST(initialisation, happens_as_written) {
    expect_as_written<operation_bench>(QStringLiteral(BV_TESTS "/operations/conversations/"), 7);
}

} // namespace brivant
