#include "app/links/links_sheet.h"
#include "base/console_log.h"
#include "link/wake_watch.h"
#include "tests/app/running_window.h"
#include "tests/bluetooth/stand_in.h"
#include "tests/terminal/cli_process.h"
#include "tools/virtual_adapter/pty_adapter.h"

#include <QTcpServer>
#include <QTcpSocket>

namespace brivant {

// "Find my adapter" with adapters of every kind around, and things that answer and are none.

namespace {

const char* const http_answer = "HTTP/1.1 400 Bad Request\r\nContent-Type: text/html\r\n\r\n<h1>400</h1>\r\n";

// Something on a TCP port that greets, then answers everything alike; null answers with what it hears.
class other_service {
public:
    explicit other_service(const char* greeting, const char* its_answer) {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this, greeting, its_answer] {
            QTcpSocket* socket = server.nextPendingConnection();
            socket->write(greeting);
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, its_answer] {
                const QByteArray heard = socket->readAll();
                socket->write(its_answer ? QByteArray(its_answer) : heard);
            });
        });
    }
    adapter_search::candidate place() const {
        return {{interface_wifi, QStringLiteral("127.0.0.1"), server.serverPort()}, QString()};
    }

private:
    QTcpServer server;
};

struct finding : testing::Test {
    stand_in service;
    pty_adapter cable;
    other_service web{"", http_answer}, shell{"router> ", "router> "}, ssh{"SSH-2.0-OpenSSH_9.2\r\n", ""},
        echo{"", nullptr};
    QString port;
    QString wifi = "wifi:127.0.0.1:" + QString::number(service.port);

    finding() {
        QString problem;
        port = cable.plug_in(virtual_adapter::load_car("can11", problem));
        service.put_le();
        silence_console_log();
    }
    QString found_by(adapter_finder& finder) {
        QStringList kinds;
        for (const probed_adapter& one : finder.adapters())
            kinds += one.where.text().section(':', 0, 0) + " " + one.greeting;
        kinds.sort();
        return kinds.join(", ");
    }
};

} // namespace

TEST_F(finding, every_kind_among_wrong_answers) {
    qt_timers clock;
    adapter_finder finder(make_transport, clock);
    QElapsedTimer since;
    since.start();
    qint64 first_wifi = 0;
    QObject::connect(&finder, &adapter_finder::changed, [&] {
        for (const probed_adapter& one : finder.adapters())
            if (one.where.kind == interface_wifi && first_wifi == 0)
                first_wifi = since.elapsed();
    });
    finder.start({{*adapter_address::of(wifi), {}}, web.place(), shell.place(), ssh.place(), echo.place()},
                 {port});
    EXPECT_TRUE(finder.sentence().startsWith("Looking around by radio"));
    ASSERT_TRUE(wait_until([&] { return !finder.is_running(); }, 30000));
    EXPECT_EQ(found_by(finder), "ble ELM327 v1.5, bluetooth ELM327 v1.5, usb ELM327 v1.5, wifi ELM327 v1.5");
    EXPECT_LT(first_wifi, 3000);
    EXPECT_EQ(finder.sentence(), "4 adapters have answered. Which one?");
    for (const probed_adapter& one : finder.answers()) {
        EXPECT_NE(one.where.where, late_address); // it is not paired: only the person pairs
        EXPECT_NE(one.where.where, phone_address);
    }
    EXPECT_FALSE(service.call("is_discovering").toBool());
    finder.start({}, {});
    finder.stop(); // in the middle of it
    EXPECT_FALSE(finder.is_running());
}

TEST_F(finding, an_operation_over_the_one_that_is_found) {
    QTemporaryDir profile;
    service.call("forget_devices");
    cli_process none({"--profile", profile.path(), "--find", "read-codes"});
    EXPECT_EQ(none.status(), 1);
    EXPECT_TRUE(none.progress().contains("No adapter has answered")) << none.progress().constData();
    service.put_le();
    cli_process one({"--profile", profile.path(), "--find", "--json", "read-codes"});
    EXPECT_EQ(one.status(), 0) << one.progress().constData();
    EXPECT_EQ(one.json()["codes"].toArray().size(), 2);
    cli_process used({"--profile", profile.path(), "--json", "links", "list"});
    EXPECT_EQ(used.status(), 0);
    const QJsonObject row = used.json()["links"].toArray().first().toObject();
    EXPECT_EQ(row["address"], "ble:" + le_address);
    EXPECT_TRUE(row["what"].toString().startsWith("ELM327"));
    EXPECT_EQ(row["name"], "IOS-Vlink");
    cli_process two({"--profile", profile.path(), "links", "find", port});
    EXPECT_EQ(two.status(), 0);
    EXPECT_EQ(two.out().count('\n'), 2) << two.out().constData();
    for (const QStringList& words : {QStringList{"name", "ios-vlink", "Garage"},
                                     {"use", "garage"},
                                     {"use", "any"},
                                     {"prefer", "Garage"},
                                     {"no-preference", "Garage"},
                                     {"forget", "Garage"}})
        EXPECT_EQ(cli_process(QStringList{"--profile", profile.path(), "links"} + words).status(), 0)
            << words.join(u' ').toStdString();
    cli_process nobody({"--profile", profile.path(), "links", "use", "Garage"});
    EXPECT_EQ(nobody.status(), 1);
    EXPECT_TRUE(nobody.progress().contains("There is no adapter Garage"));
    for (const char* wrong : {"links lists", "links use", "links find ttyUSB0", "links list x"})
        EXPECT_EQ(cli_process(QString(wrong).split(' ')).status(), 2) << wrong;
}

TEST_F(finding, the_sheet_of_links) {
    running_window car;
    car.core.defaults.set(
        setting::known_adapters,
        QStringList{R"({"where":")" + wifi + R"(","name":"Old stick","used":"2026-01-31"})"});
    car.press(Qt::Key_L, Qt::ControlModifier);
    auto& list = car.part<QTableWidget>("links_list");
    const auto row_with = [&](const QString& name) {
        const auto found = list.findItems(name, Qt::MatchContains);
        return found.isEmpty() ? -1 : found.first()->row();
    };
    const auto state = [&](const QString& name) {
        return row_with(name) < 0 ? QString() : list.item(row_with(name), 4)->text();
    };
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return state("IOS-Vlink") == "around" && state("OBDII") == "paired"; }));
    EXPECT_EQ(row_with("Phone"), -1);
    car.part<QCheckBox>("links_box_3").click(); // hardly adapters
    EXPECT_GE(row_with("Phone"), 0);
    car.press(Qt::Key_F5);
    EXPECT_EQ(car.part<QPushButton>("links_find").text(), "Stop looking");
    EXPECT_TRUE(QTest::qWaitFor([&] { return state("Old stick") == "answers"; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return state("IOS-Vlink") == "answers"; }, 20000));
    list.selectRow(row_with("IOS-Vlink"));
    car.click("links_use");
    EXPECT_EQ(car.core.place.now().text(), "ble:" + le_address);
    car.press(Qt::Key_1, Qt::ControlModifier);
    car.press(Qt::Key_F5);
    EXPECT_TRUE(car.wait_until_idle());
    EXPECT_EQ(car.part<QLabel>("code_count").text(), "2");

    car.press(Qt::Key_L, Qt::ControlModifier);
    auto& again = *car.window->findChildren<QTableWidget*>("links_list").last();
    EXPECT_EQ(again.item(0, 4)->text().section(',', 0, 0), "connected");
    again.selectRow(0);
    auto& name = *car.window->findChildren<QLineEdit*>("links_name").last();
    name.setText("Blue one");
    Q_EMIT name.editingFinished();
    EXPECT_TRUE(car.window->findChildren<QLabel*>("links_sentence").last()->text().startsWith("Radio "));
    car.press(Qt::Key_Escape);
    EXPECT_EQ(known_adapters_in(car.core.defaults.value(setting::known_adapters)).first().name, "Blue one");
}

// The login service tells of sleep on the system's bus.
TEST(wake_watch, tells_when_the_computer_was_woken) {
    const QDBusConnection login = QDBusConnection::connectToBus(QDBusConnection::SystemBus, "login");
    ASSERT_TRUE(QDBusConnection(login).registerService("org.freedesktop.login1"));
    wake_watch watch;
    int woken = 0;
    QObject::connect(&watch, &wake_watch::woke, [&] { ++woken; });
    for (const bool is_going_to : {true, false}) {
        QDBusMessage signal = QDBusMessage::createSignal("/org/freedesktop/login1",
                                                         "org.freedesktop.login1.Manager", "PrepareForSleep");
        signal << is_going_to;
        login.send(signal);
    }
    EXPECT_TRUE(wait_until([&] { return woken == 1; }));
    QDBusConnection::disconnectFromBus("login");
}

} // namespace brivant
