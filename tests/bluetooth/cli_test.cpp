#include "tests/bluetooth/stand_in.h"
#include "tests/terminal/cli_process.h"

#include <csignal>

namespace brivant {

// The real brivant-cli over Bluetooth.

namespace {

QJsonObject result_of(const QStringList& arguments) {
    cli_process run(arguments);
    EXPECT_EQ(run.status(), 0) << run.progress().constData();
    QJsonObject result = run.json();
    result.remove("messages"); // they name the link
    return result;
}

} // namespace

TEST(bluetooth_cli, reads_the_same_as_over_wifi) {
    stand_in service;
    const QString wifi = "127.0.0.1:" + QString::number(service.port);
    for (const char* command : {"read-codes", "pending", "mode6"})
        EXPECT_EQ(result_of({"--bluetooth", obd_address.toLower(), "--json", command}),
                  result_of({"--wifi", wifi, "--json", command}))
            << command;
    virtual_adapter::faults faults;
    faults.split = true; // a read for each byte
    const QJsonObject whole = result_of({"--bluetooth", obd_address, "--json", "read-codes"});
    service.server.set_faults(faults);
    EXPECT_EQ(result_of({"--bluetooth", obd_address, "--json", "read-codes"}), whole);
    const QByteArray sent = service.call("take_received").toByteArray();
    EXPECT_TRUE(sent.startsWith(QByteArray("AT Z\r\0AT E0\r\0", 13))) << sent.left(40).constData();
    EXPECT_EQ(sent.count('\0'), sent.count('\r'));
    EXPECT_EQ(QByteArray(sent).replace(QByteArray("\r\0", 2), "").count('\0'), 0);
}

TEST(bluetooth_cli, reads_the_same_over_bluetooth_le) {
    stand_in service;
    const QString wifi = "127.0.0.1:" + QString::number(service.port);
    for (const int mtu : {23, 247}) {
        service.put_le(stand_in::usual, mtu);
        for (const char* command : {"read-codes", "pending", "mode6"})
            EXPECT_EQ(result_of({"--ble", le_address.toLower(), "--json", command}),
                      result_of({"--wifi", wifi, "--json", command}))
                << command << mtu;
        EXPECT_EQ(service.call("le_state", {le_address}).toString(), ""); // let go of at its end
    }
    EXPECT_EQ(service.call("take_received").toByteArray().count('\0'), 0);
    service.set_le("drops_after", 4);
    cli_process run({"--ble", le_address, "--json", "read-codes"});
    EXPECT_EQ(run.status(), 1);
    EXPECT_TRUE(run.said().contains("Connected to IOS-Vlink")) << run.said().toStdString();
    EXPECT_TRUE(run.said().contains("closed the connection")) << run.said().toStdString();
    service.put_le({"fef5 8082 notify,write"});
    cli_process other({"--ble", le_address, "--json", "read-codes"});
    EXPECT_EQ(other.status(), 1);
    EXPECT_TRUE(other.said().contains("IOS-Vlink is connected, but has no service that an adapter has"))
        << other.said().toStdString();
}

TEST(bluetooth_cli, a_channel_lost_while_reading) {
    stand_in service;
    virtual_adapter::faults faults;
    faults.cut_after = 4;
    service.server.set_faults(faults);
    cli_process run({"--bluetooth", obd_address, "--json", "read-codes"});
    EXPECT_EQ(run.status(), 1);
    EXPECT_TRUE(run.said().contains("BT Connected!!"));
    EXPECT_TRUE(run.said().contains("Connection to BT lost"));
}

TEST(bluetooth_cli, tells_how_a_device_is_named) {
    stand_in service;
    cli_process run({"read-codes"}); // none was ever chosen
    EXPECT_EQ(run.status(), 1);
    EXPECT_TRUE(run.progress().contains("--bluetooth ADDRESS")) << run.progress().constData();
    EXPECT_TRUE(run.progress().contains("AA:BB:CC:DD:EE:01  paired      OBDII"));
    service.put_le();
    cli_process le_only({"--bluetooth", le_address, "read-codes"});
    EXPECT_EQ(le_only.status(), 1);
    EXPECT_TRUE(le_only.progress().contains("IOS-Vlink speaks Bluetooth LE only"));
    cli_process unpaired({"--bluetooth", late_address, "read-codes"});
    EXPECT_EQ(unpaired.status(), 1);
    EXPECT_TRUE(unpaired.progress().contains("PIN usually 1234 or 0000"));
    EXPECT_EQ(cli_process({"--bluetooth", "OBDII", "read-codes"}).status(), 2);
    EXPECT_EQ(cli_process({"--bluetooth", obd_address, "--demo", "read-codes"}).status(), 2);
}

TEST(bluetooth_cli, scan) {
    stand_in service;
    service.put_le();
    cli_process run({"bluetooth-scan"});
    EXPECT_TRUE(wait_until([&] { return run.progress().contains("V-LINK"); }));
    ::kill(static_cast<pid_t>(run.process.processId()), SIGINT);
    EXPECT_EQ(run.status(), 1); // stopped; what was found is told
    EXPECT_EQ(run.out(), "AA:BB:CC:DD:EE:01  paired      OBDII\nC0:BB:CC:DD:EE:05  LE          IOS-Vlink\n"
                         "AA:BB:CC:DD:EE:02  not paired  V-LINK\n"
                         "AA:BB:CC:DD:EE:03  paired      Phone\n");
    service.call("set_adapter", {false, false});
    cli_process none({"--json", "bluetooth-scan"});
    EXPECT_EQ(none.status(), 1);
    EXPECT_TRUE(none.said().contains("has no Bluetooth"));
}

} // namespace brivant
