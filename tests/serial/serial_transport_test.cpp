#include "tests/serial/port_bench.h"
#include "tools/virtual_adapter/uart.h"

#include <array>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace brivant {

namespace {

// The transport with the virtual adapter at its port.
class serial : public port_bench {
protected:
    serial() {
        adapter.set_link(path);
        choose(path);
    }
    pty_adapter adapter;
};

// A port whose device the test plays itself.
class odd_device : public port_bench {
protected:
    odd_device() : line(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        EXPECT_TRUE(line >= 0 && ::grantpt(line) == 0 && ::unlockpt(line) == 0);
        std::array<char, 64> name{};
        EXPECT_EQ(::ptsname_r(line, name.data(), name.size()), 0);
        choose(QString::fromLatin1(name.data()));
        QObject::connect(&heard, &QSocketNotifier::activated, [this] {
            std::array<char, 256> bytes;
            const ssize_t count = ::read(line, bytes.data(), bytes.size());
            if (count > 0 && answers)
                say(answers(QByteArray(bytes.data(), int(count))));
            else if (count <= 0)
                heard.setEnabled(false);
        });
        heard.setEnabled(true);
    }
    ~odd_device() override { unplug(); }
    void say(const QByteArray& bytes) const {
        EXPECT_EQ(::write(line, bytes.data(), bytes.size()), bytes.size());
    }
    void unplug() {
        heard.setEnabled(false);
        if (line >= 0)
            ::close(line);
        line = -1;
    }

    int line;
    QSocketNotifier heard{line, QSocketNotifier::Read};
    std::function<QByteArray(const QByteArray&)> answers;
};

constexpr std::array all_speeds{38400, 115200, 9600, 230400, 57600, 19200, 500000};

} // namespace

// In the order in which speeds are tried, each found soon after those before it.
TEST_F(serial, finds_the_speed_of_the_adapter) {
    for (std::size_t i = 0; i < all_speeds.size(); ++i) {
        const int speed = all_speeds[i];
        adapter.set_speed(speed);
        adapter.plug_in(car_at("can11"));
        choose(path);
        EXPECT_EQ(open(), "opened") << speed;
        EXPECT_EQ(transport.speed(), speed);
        std::cout << speed << " bit/s: found after " << took_ms << " ms";
        EXPECT_LT(took_ms, i == 0 ? 450 : 700 + 250 * qint64(i));
        EXPECT_EQ(received, ""); // nothing of the search
        transport.write("AT E0\r");
        EXPECT_TRUE(arrives("AT E0\rOK\r\r>")) << received.toStdString();
        transport.close();

        choose(path, speed);
        EXPECT_EQ(open(), "opened") << speed;
        std::cout << ", as the speed of the last time after " << took_ms << " ms\n";
        EXPECT_LT(took_ms, 450);
        received.clear();
        transport.write("AT RV\r"); // its echo is still off: closing the port has not reset it
        EXPECT_TRUE(arrives("14.1V\r\r>")) << received.toStdString();
        transport.close();
        received.clear();
    }
    choose(path, 9600); // another adapter has come to the port
    EXPECT_EQ(open(), "opened");
    EXPECT_EQ(transport.speed(), all_speeds.back());
    EXPECT_LT(took_ms, 3000);
}

// Each speed's rubbish at each other, both ways: nothing of it is an answer.
TEST(answer_of_adapter, is_told_from_rubbish) {
    for (const char* good : {"\x7F\x7F\r?\r\r>", "?\r\r>", "\x7F\x7F\r?\r>", "\x7F\x7F\r\r\n?\r\n\r\n>",
                             "STOPPED\r\r>?\r\r>", "\xF8\x7F\x7F\r?\r\r>", "?\r\r> ", "ELM327 v1.5\r\r>"})
        EXPECT_TRUE(is_answer_of_adapter(good)) << good;
    EXPECT_TRUE(is_answer_of_adapter(QByteArray("?\0\r\0\r>\0", 7)));
    for (const char* bad : {"", ">", "?", "\x7F\x7F\r", "\x7F\x7F\r>\xF8", "\xF8\x80>", "\x01\x02\x03\r>",
                            "$GPGGA,0\r\n", "login: ", "a>b"})
        EXPECT_FALSE(is_answer_of_adapter(bad)) << bad;
    for (const int its_speed : all_speeds)
        for (const int speed : all_speeds)
            for (const char* said :
                 {"\x7F\x7F\r?\r\r>", "?\r\r>", "STOPPED\r\r>?\r\r>", "BUFFER FULL\r\r>"}) {
                const std::string heard = virtual_adapter::heard_at(speed, said, its_speed);
                EXPECT_EQ(is_answer_of_adapter(QByteArray::fromStdString(heard)), speed == its_speed)
                    << said << " at " << its_speed << " read at " << speed;
            }
}

TEST_F(odd_device, is_no_adapter) {
    const struct {
        const char* name;
        std::function<QByteArray(const QByteArray&)> answers;
    } rows[] = {
        {"silent", {}},
        {"echo", [](const QByteArray& bytes) { return bytes; }},
        {"modem", [](const QByteArray& bytes) { return bytes + "\r\nERROR\r\n"; }},
        {"prompts of rubbish", [](const QByteArray&) { return QByteArray("\xF8>\x80>\r>\xFE\xF8>"); }},
    };
    for (const auto& row : rows) {
        answers = row.answers;
        EXPECT_EQ(open(), "failed") << row.name;
        EXPECT_EQ(reason,
                  "No adapter answers at " + place.serial_port() +
                      ", at any usual speed. Check that it is plugged into the car and has power, and that "
                      "this is its port.");
        EXPECT_LT(took_ms, 3000) << row.name;
        EXPECT_EQ(transport.state(), transport::condition::closed);
        EXPECT_EQ(transport.speed(), 0);
        EXPECT_EQ(received, "") << row.name;
        heard.setEnabled(true);
    }
}

TEST_F(odd_device, bytes_arrive_as_text_whatever_is_between_them) {
    answers = [](const QByteArray&) { return QByteArray("?\r\r>"); };
    ASSERT_EQ(open(), "opened");
    answers = {};
    say(QByteArray("41 \0"
                   "00 \xC3"
                   "BE\xFF",
                   12));
    say(" 3F");
    EXPECT_TRUE(arrives("41 00 BE 3F")) << received.toStdString();
    say("\x80\r>");
    EXPECT_TRUE(arrives("41 00 BE 3F\r>"));
    EXPECT_EQ(events.join(' '), "opened");
}

// The plug is pulled while the speed is looked for, while nothing happens, and in the middle of a reply.
TEST_F(odd_device, unplugged) {
    transport.open();
    QTimer::singleShot(100, &transport, [this] { unplug(); });
    EXPECT_TRUE(wait_until([this] { return !events.isEmpty(); }, 2000));
    EXPECT_EQ(events.join(' '), "failed");
    EXPECT_EQ(reason, place.serial_port() + " was unplugged while the adapter was looked for.");
    EXPECT_EQ(transport.state(), transport::condition::closed);
    EXPECT_EQ(open(), "failed");
    EXPECT_EQ(reason,
              place.serial_port() + " is not plugged in. Plug the adapter in, or choose another port.");
}

TEST_F(serial, unplugged_and_plugged_in_again) {
    adapter.plug_in(car_at("can11"));
    ASSERT_EQ(open(), "opened");
    adapter.unplug();
    EXPECT_TRUE(wait_until([this] { return events.size() == 2; }, 2000));
    EXPECT_EQ(events.join(' '), "opened closed");
    EXPECT_EQ(transport.state(), transport::condition::closed);
    transport.write("too late\r");

    adapter.set_faults({.split = true}); // every byte by itself
    adapter.plug_in(car_at("can11"));
    ASSERT_EQ(open(), "opened") << reason.toStdString(); // by the link, whatever the device is called now
    transport.write("01 00\r");
    EXPECT_TRUE(wait_until([this] { return received.endsWith("41 00 "); })) << received.toStdString();
    adapter.unplug();
    EXPECT_TRUE(wait_until([this] { return events.size() == 2; }, 2000));
    EXPECT_TRUE(received.startsWith("01 00\rSEARCHING...\r41 00 ")) << received.toStdString();

    adapter.set_faults({.cut_after = 2}); // what it said last still arrives
    adapter.plug_in(car_at("can11"));
    received.clear();
    ASSERT_EQ(open(), "opened");
    transport.close(); // one's own close is no news
    EXPECT_EQ(events.join(' '), "opened");
}

} // namespace brivant
