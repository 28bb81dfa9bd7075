#include "link/wifi_transport.h"
#include "tests/support/print_qt.h"
#include "tests/support/wait_until.h"

#include <QTcpServer>
#include <gtest/gtest.h>

namespace brivant {

// The real transport over the loopback interface.

namespace {

class wifi : public testing::Test {
protected:
    QTcpServer server;
    adapter_place place;
    wifi_transport transport{place};
    QTcpSocket* far_end = nullptr;
    QString received;
    QStringList events;

    wifi() {
        QObject::connect(&transport, &transport::opened, [this] { events += "opened"; });
        QObject::connect(&transport, &transport::closed, [this] { events += "closed"; });
        QObject::connect(&transport, &transport::failed, [this](const QString& why) {
            events += why.isEmpty() ? "failed without a reason" : "failed";
        });
        QObject::connect(&transport, &transport::OBDevent, [this](const QString& text) { received += text; });
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        place.choose_wifi("127.0.0.1", QString::number(server.serverPort()));
    }
    void open() {
        transport.open();
        transport.open(); // no second connection
        ASSERT_TRUE(wait_until([this] { return !events.isEmpty() && server.hasPendingConnections(); }));
        far_end = server.nextPendingConnection();
        EXPECT_FALSE(server.hasPendingConnections());
    }
    void send(const QByteArray& bytes) {
        far_end->write(bytes);
        far_end->flush();
    }
    // As send(), in a read of its own: what is answered afterwards was sent when the piece was taken.
    void send_alone(const QByteArray& bytes) {
        send(bytes);
        transport.write("ping\r");
        EXPECT_TRUE(wait_until([this] { return far_end->bytesAvailable() >= 5; }));
        far_end->readAll();
    }
    bool arrives(const QString& text) {
        return wait_until([&] { return received == text; });
    }
};

} // namespace

TEST_F(wifi, carries_commands_and_replies) {
    transport.write("too early\r");
    open();
    transport.write("01 00\r");
    transport.write("03\r");
    QByteArray commands;
    EXPECT_TRUE(wait_until([&] { return (commands += far_end->readAll()).size() >= 9; }));
    EXPECT_EQ(commands, "01 00\r03\r"); // no terminator, nothing from before
    send("41 00 BE");
    EXPECT_TRUE(arrives("41 00 BE"));
    send(QByteArray("\0 3F\0 A8\r\r>", 11)); // some adapters send NUL bytes
    EXPECT_TRUE(arrives("41 00 BE 3F A8\r\r>"));
    received.clear();
    const QByteArray much =
        QByteArray("7E8 06 41 00 BE 3F A8 13 \r").repeated(20000) + ">"; // over many reads
    far_end->write(much);
    EXPECT_TRUE(wait_until([&] { return received.endsWith('>'); }));
    EXPECT_EQ(received.toUtf8(), much);
    EXPECT_EQ(events.join(' '), "opened");
}

TEST_F(wifi, drops_a_read_that_is_not_utf8) {
    open();
    send_alone("\xC3\xBC>"); // a whole two-byte character
    EXPECT_EQ(received, "\u00fc>");
    send_alone("12\xC3"); // the same in two reads: both are lost
    send_alone("\xBC>");
    send_alone("41 00\r>");
    EXPECT_EQ(received, "\u00fc>41 00\r>");
    for (const char* half : {"AB\xC3",
                             "\xBC"
                             "CD",
                             "\xFF\xFE", "\xED\xA0\x80"})
        EXPECT_EQ(decode_received(half), "") << half;
    EXPECT_EQ(decode_received("next"), "next"); // nothing is kept from the read before
}

TEST_F(wifi, tells_the_end_after_what_came_before_it) {
    open();
    send("last words");
    far_end->close();
    EXPECT_TRUE(wait_until([this] { return events.contains("closed"); }));
    EXPECT_EQ(received, "last words");
    EXPECT_EQ(events.join(' '), "opened closed"); // no error beside it
    EXPECT_EQ(transport.state(), transport::condition::closed);
    events.clear();
    open(); // and it can be opened again
    transport.close();
    EXPECT_EQ(events.join(' '), "opened"); // one's own close is no news
    transport.write("too late\r");
}

TEST_F(wifi, tells_a_refused_or_senseless_port) {
    const quint16 closed_port = server.serverPort();
    server.close();
    for (const QString& port :
         {QString::number(closed_port), QString("0"), QString("words"), QString("70000")}) {
        events.clear();
        place.choose_wifi("127.0.0.1", port);
        transport.open();
        EXPECT_TRUE(wait_until([this] { return !events.isEmpty(); })) << port.toStdString();
        EXPECT_EQ(events.join(' '), "failed") << port.toStdString();
        EXPECT_EQ(transport.state(), transport::condition::closed); // to be opened anew
    }
}

} // namespace brivant
