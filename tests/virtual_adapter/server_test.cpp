#include "tests/support/wait_until.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/command_line.h"
#include "tools/virtual_adapter/virtual_adapter_server.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTcpSocket>

#include <algorithm>
#include <array>

using namespace brivant;
using namespace virtual_adapter;

namespace {

// A client on the event loop of the test.
struct client {
    QTcpSocket socket;
    std::string received;
    int reads = 0;

    explicit client(quint16 port) {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] {
            ++reads;
            received += socket.readAll().toStdString();
        });
        socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        EXPECT_TRUE(wait_until([this] { return socket.state() == QAbstractSocket::ConnectedState; }));
    }

    bool is_cut() {
        return wait_until([this] { return socket.state() == QAbstractSocket::UnconnectedState; });
    }

    void send(const char* text) { socket.write(text); }

    // Everything up to that many prompts since the last call.
    std::string replies(int prompts = 1) {
        wait_until([&] { return std::count(received.begin(), received.end(), '>') >= prompts; });
        return std::exchange(received, {});
    }

    std::string ask(const char* command) {
        send(command);
        return replies();
    }
};

class server : public testing::Test {
protected:
    void SetUp() override {
        QString problem;
        on = load_car("can11", problem);
        on->set_clock([] { return steady_moment_s; });
    }
    quint16 start(const faults& what = {}) {
        adapter.set_faults(what);
        return adapter.start(on);
    }

    std::shared_ptr<car> on;
    virtual_adapter_server adapter;
};

} // namespace

TEST_F(server, connections_have_their_own_adapter_and_share_the_car) {
    client one(start());
    EXPECT_EQ(one.ask("ATE0\r"), "ATE0\rOK\r\r>");
    EXPECT_EQ(one.ask("04\r"), "SEARCHING...\r44 \r44 \r\r>");
    client two(adapter.start(on)); // a new start closes the old connections
    EXPECT_TRUE(one.is_cut());
    client three(quint16(two.socket.peerPort()));
    EXPECT_EQ(two.ask("ATE0\r"), "ATE0\rOK\r\r>");
    EXPECT_EQ(three.ask("03\r"), "03\rSEARCHING...\r43 00 \r43 00 \r\r>");
    EXPECT_EQ(two.reads, 1);
    two.send("ATRV\r010D\r"); // in one write: answered one after the other
    EXPECT_EQ(two.replies(2), "14.1V\r\r>SEARCHING...\r41 0D 3C \r41 0D 3C \r\r>");
}

TEST_F(server, a_character_stops_a_delayed_reply) {
    client slow(start({.delay_ms = 40}));
    EXPECT_EQ(slow.ask("ATE0\r"), "ATE0\rOK\r\r>");
    slow.send("010D\r");
    slow.send("xATRV\r"); // the interrupting character is lost
    EXPECT_EQ(slow.replies(2), "STOPPED\r\r>14.1V\r\r>");
}

TEST_F(server, an_adapter_with_timing_answers_at_its_moments) {
    timing takes;
    takes.ecu_ms = {20};
    takes.round_trip_ms = 10;
    adapter.set_options({.stored_protocol = 6, .stored_automatic = false, .time = takes});
    client timed(start());
    timed.ask("ATE0\r");
    QElapsedTimer took;
    took.start();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(timed.ask("010D1\r"), "41 0D 3C \r\r>");
    EXPECT_GE(took.elapsed(), 20 * 34); // 10 on the way, 1 + 20 of adapter and ECU, some 4 of serial line
    EXPECT_LT(took.elapsed(), 20 * 34 * 2);
    timed.send("010D\r");
    wait_until([&] { return timed.received.ends_with("\r"); });
    timed.send("x"); // while it waits for a third answer
    EXPECT_EQ(timed.replies(), "41 0D 3C \r41 0D 3C \rSTOPPED\r\r>");
    EXPECT_EQ(timed.ask("ATRV\r"), "14.1V\r\r>");
}

TEST_F(server, every_byte_by_itself) {
    client thin(start({.split = true}));
    EXPECT_EQ(thin.ask("ATE0\r"), "ATE0\rOK\r\r>");
    EXPECT_GT(thin.reads, 5);
}

TEST_F(server, the_link_is_cut) {
    client cut(start({.cut_after = 2}));
    cut.ask("ATE0\r");
    EXPECT_EQ(cut.ask("ATRV\r"), "14.1V\r\r>");
    EXPECT_TRUE(cut.is_cut());
    client again(start({.reset_closes = true}));
    again.send("at z\r");
    EXPECT_TRUE(again.is_cut());
    EXPECT_EQ(again.received, "");
}

TEST(fault_line, what_becomes_of_four_exchanges) {
    struct {
        const char* name;
        faults what;
        std::array<const char*, 4> sent;
    } const rows[] = {
        {"none", {}, {"A\rB\r\r>", "A\rB\r\r>", "A\rB\r\r>", "A\rB\r\r>"}},
        {"one line", {.lose_line = 3}, {"A\rB\r\r>", "B\r\r>", "A\rB\r\r>", "A\rB\r\r>"}},
        {"every third", {.lose_every = 3}, {"A\rB\r\r>", "B\r\r>", "A\r\r>", "A\rB\r\r>"}},
        {"glued", {.glue_reply = 2}, {"A\rB\r\r>", "", "A\rB\r\r>A\rB\r\r>", "A\rB\r\r>"}},
        {"silent", {.silent_from = 3}, {"A\rB\r\r>", "A\rB\r\r>", "", ""}},
        {"noise before",
         {.garbage_before = "?", .garbage_every = 2},
         {"A\rB\r\r>", "?A\rB\r\r>", "A\rB\r\r>", "?A\rB\r\r>"}},
        {"noise inside", {.garbage_inside = "#"}, {"A\rB#\r\r>", "A\rB#\r\r>", "A\rB#\r\r>", "A\rB#\r\r>"}},
    };
    for (const auto& row : rows) {
        fault_line line(row.what);
        for (const char* expected : row.sent)
            EXPECT_EQ(line.pass({"0100", "", "A\rB\r\r>"}).text, expected) << row.name;
    }
    fault_line late({.late_reply = 2, .late_ms = 40});
    for (const int wait_ms : {0, 40, 0})
        EXPECT_EQ(late.pass({"0100", "", ">"}).wait_ms, wait_ms);
    fault_line sparing({.garbage_before = "?", .garbage_spares_at = true});
    EXPECT_EQ(sparing.pass({"ATZ", "", ">"}).text, ">");
    EXPECT_EQ(sparing.pass({"0100", "", ">"}).text, "?>");
    fault_line linefeeds({.lose_line = 1});
    EXPECT_EQ(linefeeds.pass({"0100", "0100\r\n", "A\r\nB\r\n\r\n>"}).text, "0100\r\nB\r\n\r\n>");
}

TEST(command_line, is_checked) {
    const auto read = [](const QString& words) {
        return read_command_line(("program --port=0 " + words).split(' '));
    };
    for (const char* bad :
         {"--nonsense", "stray", "--delay=-1", "--delay=x", "--listen=nowhere", "--late=3", "--late=1:2:3",
          "--protocol=D", "--port", "--kind=toy", "--baud=38400", "--kind=stn --baud=300",
          "--kind=stn --ecu-delay=8,x", "--clone-fault=rust", "--ceiling=0C", "--kind=stn --ceiling=0C,xyz",
          "--pty --baud=300", "--pty --baud=38401", "--pty --jitter=1"})
        EXPECT_FALSE(read(bad).mistake.isEmpty()) << bad;
    const wishes good = read("--late=3:250 --protocol=A3 --refuse=atrv --still");
    EXPECT_EQ(good.mistake, QString());
    EXPECT_EQ(good.what.late_reply, 3);
    EXPECT_EQ(good.what.late_ms, 250);
    EXPECT_EQ(good.what.refused, std::vector<std::string>{"ATRV"});
    EXPECT_TRUE(good.still && good.options.stored_automatic);
    EXPECT_EQ(good.options.stored_protocol, 3);
    EXPECT_FALSE(good.options.time);
    const wishes kind = read("--kind=stn --baud=2000000 --ecu-delay=8,12 --clone-fault=hang --ceiling=0C,0d");
    EXPECT_EQ(kind.mistake, QString());
    EXPECT_EQ(kind.options.banner, "ELM327 v1.4b");
    EXPECT_EQ(kind.options.time->baud, 2'000'000);
    EXPECT_EQ(kind.options.time->ecu_ms, (std::vector<double>{8, 12}));
    EXPECT_TRUE(kind.what.clone.hangs_on_groups && kind.shows_ceiling);
    EXPECT_EQ(kind.ceiling_of, (std::vector<std::uint8_t>{0x0C, 0x0D}));
    const wishes pty = read("--pty --baud=115200");
    EXPECT_EQ(pty.mistake, QString());
    EXPECT_TRUE(pty.pty && pty.pty_speed == 115200 && !pty.options.time);
    EXPECT_EQ(read("--pty --kind=stn").pty_speed, 0);
    EXPECT_EQ(read("--kind=wifi --banner=X").options.banner, "X");
    EXPECT_TRUE(read("--list-cars").print_and_leave.contains("can11"));
}
