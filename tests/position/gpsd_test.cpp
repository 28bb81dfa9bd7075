#include "position/gpsd_client.h"
#include "tests/support/gpsd_stand_in.h"
#include "tests/support/hand_timers.h"
#include "tests/support/print_qt.h"
#include "tests/support/temporary_profile.h"
#include "tests/support/wait_until.h"

#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

namespace brivant {

namespace {

struct gpsd_bench {
    temporary_profile profile;
    hand_timers clock;
    gpsd_stand_in gpsd;
    gpsd_client client{profile.defaults, clock};

    gpsd_bench() { profile.defaults.set(setting::gpsd, gpsd.place()); }

    void begin() {
        client.begin();
        EXPECT_TRUE(wait_until([this] { return gpsd.asked.contains("WATCH"); })) << about();
    }
    std::string about() const { return client.about().toStdString(); }
    // "52.5 13.25", "none"
    QString latest() const {
        const auto told = client.latest();
        return told ? QString("%1 %2").arg(told->where.latitude).arg(told->where.longitude) : "none";
    }
};

QString text_of(const gpsd_line& line) {
    switch (line.what) {
    case gpsd_line::kind::broken: return "broken";
    case gpsd_line::kind::other: return "other";
    case gpsd_line::kind::no_fix: return "no fix";
    case gpsd_line::kind::fix: break;
    }
    QString text = QString("%1 %2").arg(line.where.latitude).arg(line.where.longitude);
    for (const auto& value : {line.where.altitude, line.where.speed, line.where.track, line.where.error})
        text += value ? QString(" %1").arg(*value) : QString(" -");
    return text;
}

} // namespace

TEST(gpsd, lines) {
    struct row {
        const char* line;
        const char* text;
    };
    const QByteArray deep = "{\"class\":" + QByteArray(50'000, '[');
    const row rows[] = {
        {R"({"class":"TPV","mode":3,"lat":52.5,"lon":-13.25,"alt":30,"altMSL":34.5,"speed":1,"track":2,"eph":3})",
         "52.5 -13.25 34.5 1 2 3"},
        {R"({"class":"TPV","mode":3,"lat":-90,"lon":180,"alt":30})", "-90 180 30 - - -"},
        {R"({"class":"TPV","mode":2,"lat":1,"lon":2,"alt":30,"speed":0})",
         "1 2 - 0 - -"}, // a height of before
        {R"({"class":"TPV","mode":3,"lat":1,"lon":2,"altMSL":1e9,"speed":-1,"track":361,"eph":"far"})",
         "1 2 - - - -"},
        {R"({"class":"TPV","mode":1,"lat":1,"lon":2})", "no fix"},
        {R"({"class":"TPV","mode":7,"lat":1,"lon":2})", "no fix"},
        {R"({"class":"TPV","mode":3,"lat":90.1,"lon":2})", "no fix"},
        {R"({"class":"TPV","mode":3,"lat":"1","lon":2})", "no fix"},
        {R"({"class":"TPV","mode":3,"lat":1})", "no fix"},
        {R"({"class":"TPV","lat":1,"lon":2})", "other"}, // it does not say whether that is a fix
        {R"({"class":"SKY","mode":3,"lat":1,"lon":2})", "other"},
        {R"({"class":"TPV","mode":3,"lat":NaN,"lon":2})", "broken"},
        {R"({"class":"TPV","mode":3,"lat":1,"lon")", "broken"},
        {R"({"class":7})", "broken"},
        {R"(["class"])", "broken"},
        {"HTTP/1.1 400 Bad Request", "broken"},
        {"", "broken"},
        {deep.constData(), "broken"},
    };
    for (const row& one : rows)
        EXPECT_EQ(text_of(gpsd_line::of(one.line)), one.text) << QByteArray(one.line).left(100).constData();
}

TEST(gpsd, places) {
    const auto place = [](const char* text) {
        const auto found = gpsd_place::of(text);
        return found ? QString("%1 %2").arg(found->host).arg(found->port) : "none";
    };
    EXPECT_EQ(place("localhost:2947"), "localhost 2947");
    EXPECT_EQ(place("192.168.0.20:1"), "192.168.0.20 1");
    EXPECT_EQ(place("[::1]:65535"), "::1 65535");
    EXPECT_EQ(place("[fe80::1%eth0]:2947"), "fe80::1%eth0 2947");
    for (const char* text : {"", "localhost", ":2947", "::1:2947", "[localhost]:2947", "a b:2947", "[]:1",
                             "a:0", "a:65536", "a:+1", "a: 1", "a:1x", "gpsd://a:2947", "\u00E9:2947", "a:"})
        EXPECT_EQ(place(text), "none") << text;
}

TEST(gpsd, only_a_fresh_fix_is_told) {
    gpsd_bench t;
    EXPECT_EQ(t.latest(), "none");
    t.begin();
    EXPECT_EQ(t.gpsd.asked, "?WATCH={\"enable\":true,\"json\":true};\n");
    t.clock.advance(5000);
    t.gpsd.say(gpsd_stand_in::fix(1, 52.5));
    ASSERT_TRUE(wait_until([&] { return t.latest() == "52.5 13.25"; }));
    EXPECT_EQ(t.client.latest()->told_us, 5'000'000);
    EXPECT_EQ(t.about(), "Position: stored with each sweep, from gpsd at " + t.gpsd.place().toStdString());

    t.clock.advance(1000); // of the same moment: more exact, not newer
    t.gpsd.say(gpsd_stand_in::fix(1, 52.51));
    ASSERT_TRUE(wait_until([&] { return t.latest() == "52.51 13.25"; }));
    EXPECT_EQ(t.client.latest()->told_us, 5'000'000);
    // Another receiver is not listened to meanwhile, whether it has a fix or none.
    t.gpsd.say(QByteArray(gpsd_stand_in::fix(9, 1)).replace("/dev/a", "/dev/b"));
    t.gpsd.say("{\"class\":\"TPV\",\"device\":\"/dev/b\",\"mode\":1}");
    t.gpsd.say("\n\nrubbish {");
    t.gpsd.say(gpsd_stand_in::fix(2, 52.52));
    ASSERT_TRUE(wait_until([&] { return t.latest() != "52.51 13.25"; }));
    EXPECT_EQ(t.latest(), "52.52 13.25");
    t.clock.advance(gpsd_client::fresh_ms);
    EXPECT_EQ(t.latest(), "52.52 13.25");
    t.clock.advance(1);
    EXPECT_EQ(t.latest(), "none");
    EXPECT_EQ(t.about(), "Position: none yet, gpsd at " + t.gpsd.place().toStdString() + " has no fix");

    t.gpsd.say(QByteArray(gpsd_stand_in::fix(9, 1)).replace("/dev/a", "/dev/b"));
    ASSERT_TRUE(wait_until([&] { return t.latest() == "1 13.25"; }));
    t.gpsd.say("{\"class\":\"TPV\",\"device\":\"/dev/b\",\"mode\":1}");
    ASSERT_TRUE(wait_until([&] { return t.latest() == "none"; }));
    t.client.end();
    ASSERT_TRUE(wait_until([&] { return !t.gpsd.has_client(); }));
    EXPECT_EQ(t.clock.running(), 0);
}

// Whatever stands there: nothing is invented, and it is tried again after 1, 2, 4 ... seconds.
TEST(gpsd, bad_manners) {
    struct row {
        const char* what;
        QByteArray says;
        bool hangs_up;
        const char* reason;
    };
    const row rows[] = {
        {"an endless line", QByteArray(200'000, 'x'), false, "it is no gpsd"},
        {"rubbish", QByteArray("\x80\xFF{]\n").repeated(30), false, "it is no gpsd"},
        {"a greeting and the end", "{\"class\":\"VERSION\"}\n", true,
         "The remote host closed the connection"},
        {"nothing and the end", "", true, "The remote host closed the connection"},
    };
    for (const row& one : rows) {
        gpsd_bench t;
        t.gpsd.greeting = one.says;
        t.gpsd.hangs_up = one.hangs_up;
        t.client.begin();
        const std::string about = QString("Position: none, gpsd at %1 cannot be asked (%2)")
                                      .arg(t.gpsd.place(), one.reason)
                                      .toStdString();
        for (const int pause : {1000, 2000, 4000, 8000, 16000, 30000, 30000}) {
            ASSERT_TRUE(wait_until([&] { return t.about() == about; })) << one.what << ": " << t.about();
            const int before = t.gpsd.connections;
            t.clock.advance(pause - 1);
            EXPECT_EQ(t.about(), about) << one.what << ' ' << pause;
            t.clock.advance(1);
            ASSERT_TRUE(wait_until([&] { return t.gpsd.connections > before; })) << one.what;
        }
        EXPECT_EQ(t.latest(), "none");
        // It becomes one that can be asked.
        ASSERT_TRUE(wait_until([&] { return t.about() == about; })) << one.what << ": " << t.about();
        t.gpsd.greeting = gpsd_stand_in::fix(1, 52.5) + "\n";
        t.gpsd.hangs_up = false;
        t.clock.advance(30000);
        EXPECT_TRUE(wait_until([&] { return t.latest() == "52.5 13.25"; })) << one.what << ": " << t.about();
    }
}

TEST(gpsd, absent_silent_and_back) {
    gpsd_bench t;
    t.gpsd.close();
    t.client.begin();
    const auto until_told = [&t](const std::string& words) {
        return wait_until([&] {
            t.clock.advance(100);
            return t.about().find(words) != std::string::npos;
        });
    };
    ASSERT_TRUE(until_told("(Connection refused)")) << t.about();
    t.gpsd.listen();
    ASSERT_TRUE(until_told("has no fix")) << t.about();
    t.gpsd.say(gpsd_stand_in::fix(1, 52.5));
    ASSERT_TRUE(until_told("stored with each sweep")) << t.about();
    t.gpsd.close(); // in the middle: the fix grows old
    ASSERT_TRUE(until_told("(Connection refused)")) << t.about();
    EXPECT_EQ(t.latest(), "none");
    t.gpsd.listen();
    ASSERT_TRUE(until_told("has no fix")) << t.about();
    ASSERT_TRUE(until_told("(it says nothing)")) << t.about(); // as a peer whose computer was switched off
    const int before = t.gpsd.connections;
    EXPECT_TRUE(until_told("has no fix")) << t.about();
    EXPECT_GT(t.gpsd.connections, before);
}

TEST(gpsd, is_not_asked_where_the_setting_says_so) {
    gpsd_bench t;
    t.profile.defaults.set(setting::store_position, false);
    t.client.begin();
    EXPECT_EQ(t.about(), "Position: not stored, as the setting BV_store_position says");
    t.profile.defaults.set(setting::store_position, true);
    t.profile.defaults.set(setting::gpsd, "nowhere");
    t.client.begin();
    EXPECT_EQ(t.about(), "Position: none, \"nowhere\" in the setting BV_gpsd is no host:port");
    EXPECT_EQ(t.clock.running(), 0);
    EXPECT_FALSE(wait_until([&] { return t.gpsd.connections > 0; }, 50));
}

// The real one, fed with a track.
TEST(gpsd, of_the_system) {
    if (QStandardPaths::findExecutable("gpsfake").isEmpty())
        GTEST_SKIP() << "gpsfake (gpsd-clients) is not installed";
    gpsd_bench t;
    quint16 port = 0;
    {
        QTcpServer free;
        ASSERT_TRUE(free.listen(QHostAddress::LocalHost));
        port = free.serverPort();
    }
    QProcess fake;
    fake.setProcessChannelMode(QProcess::MergedChannels);
    const QString track = QStringLiteral(BV_TESTS) + "/position/drive.nmea";
    fake.start("gpsfake", {"-q", "-c", "0.05", "-P", QString::number(port), track});
    t.profile.defaults.set(setting::gpsd, QString("localhost:%1").arg(port));
    t.client.begin();
    const bool is_located = wait_until(
        [&] {
            t.clock.advance(20);
            const auto told = t.client.latest();
            return told && told->where.speed && told->where.altitude;
        },
        30000);
    const auto told = t.client.latest();
    fake.terminate();
    fake.waitForFinished();
    ASSERT_TRUE(is_located) << t.about() << '\n' << fake.readAll().constData();
    EXPECT_NEAR(told->where.latitude, 52.5215, 0.0016);
    EXPECT_NEAR(told->where.longitude, 13.401, 0.0011);
    EXPECT_NEAR(*told->where.altitude, 34.5, 0.1);
    EXPECT_NEAR(*told->where.speed, 18, 0.01);
    EXPECT_NEAR(told->where.track.value_or(0), 22.1, 0.01);
}

} // namespace brivant
