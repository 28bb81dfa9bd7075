#include "tests/bluetooth/stand_in.h"
#include "tests/terminal/cli_process.h"

#include <QRegularExpression>

namespace brivant {

// What brivant-cli tells over Bluetooth LE is what it tells over Wi-Fi, of the same car. Both run side by
// side.

namespace {

// Without what names the link or the moment.
QString of_the_car(cli_process& run) {
    static const QRegularExpression passing(
        "\\d\\d:\\d\\d:\\d\\d(\\.\\d+Z)?|\"start\":\\{[^}]*\\}|\"messages\":\\[.*?\\](?=[,}])");
    return QString::fromUtf8(run.out()).remove(passing);
}

class two_links : public testing::Test {
protected:
    stand_in service;
    virtual_adapter_server adapter; // with a car that keeps driving 60 km/h
    QString port;

    two_links() {
        QString problem;
        virtual_adapter::car_description engine = virtual_adapter::load_car("can11", problem)->description();
        for (const std::uint8_t pid : {0x0B, 0x10}) // for boost and fuel
            engine.ecus.front().pids.try_emplace(pid,
                                                 virtual_adapter::pid_value{.live = true, .constant = {}});
        const auto car = std::make_shared<virtual_adapter::car>(std::move(engine));
        car->set_clock([] { return virtual_adapter::steady_moment_s; });
        port = QString::number(adapter.start(car));
        service.call("set_port", {port.toInt()});
        service.put_le();
    }
    // What the run over LE tells.
    QString same(const QString& command) {
        const QStringList words = QStringList{"--yes", "--json"} + command.split(' ');
        cli_process wifi(QStringList{"--wifi", "127.0.0.1:" + port} + words);
        cli_process le(QStringList{"--ble", le_address} + words);
        EXPECT_EQ(wifi.status(), 0) << wifi.progress().constData();
        EXPECT_EQ(le.status(), 0) << le.progress().constData();
        EXPECT_EQ(of_the_car(le), of_the_car(wifi)) << command.toStdString();
        return of_the_car(le);
    }
};

} // namespace

TEST_F(two_links, every_operation) {
    for (const char* command :
         {"link-info", "permanent", "vehicle-info", "mode6", "misfire", "o2-tests", "extras", "report",
          "log --sweeps 3 --pids 0C,0D,05", "fuel --sweeps 3", "boost --sweeps 3", "o2 --sweeps 3",
          "log --fast --sweeps 3 --pids 0C,0D,05", "script 01{L} 04 06 2"}) {
        EXPECT_GT(same(command).size(), 100) << command; // it is not that neither says anything
    }
    EXPECT_TRUE(same("read-codes").contains("P0133"));
    EXPECT_EQ(cli_process({"--ble", le_address, "--yes", "clear-codes"}).status(), 0);
    EXPECT_FALSE(same("read-codes").contains("P0133"));
}

TEST_F(two_links, a_run_goes_on_over_the_next_link) {
    service.set_le("drops_after", 40);
    cli_process run({"--ble", le_address, "--json", "log", "--sweeps", "20", "--pids", "0C,0D,05"});
    EXPECT_EQ(run.status(), 0) << run.progress().constData();
    EXPECT_TRUE(run.progress().contains("Connection lost. Trying again")) << run.progress().constData();
    EXPECT_GE(run.out().count("\"text\":\"37.50 mph\""), 20) << run.out().constData();
}

} // namespace brivant
