#include "tools/virtual_adapter/car.h"
#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/car_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace virtual_adapter;

namespace {

std::shared_ptr<car> built_in(const char* name) {
    QString problem;
    auto made = load_car(QString::fromLatin1(name), problem);
    EXPECT_TRUE(made) << problem.toStdString();
    return made;
}

// The first message of the first ECU; empty when nobody answers.
bytes first(car& on, const bytes& request) {
    const auto answers = on.ask(request);
    return answers.empty() ? bytes{} : answers.front().messages.front();
}

} // namespace

// What the maps announce is what the ECU answers, for every group of services 01, 02 and 06.
TEST(car, maps_and_answers_agree) {
    ASSERT_GE(built_in_cars().size(), 8);
    for (const QString& name : built_in_cars()) {
        const auto on = built_in(name.toLatin1().constData());
        on->set_clock([] { return steady_moment_s; });
        const bool can = is_can(on->network().kind);
        for (const std::uint8_t service : {0x01, 0x02, 0x06}) {
            const bytes tail = service == 0x02 ? bytes{0x00} : bytes{};
            const std::size_t map_at = service == 0x02 || (service == 0x06 && !can) ? 3 : 2;
            for (int group = 0; group <= 0xE0; group += 0x20) {
                std::map<std::uint32_t, bytes> maps;
                bytes request{service, std::uint8_t(group)};
                request.insert(request.end(), tail.begin(), tail.end());
                for (const answer& one : on->ask(request))
                    if (one.messages.front()[0] != 0x7F)
                        maps[one.address] = one.messages.front();
                for (int id = group + 1; id < group + 0x20; ++id) {
                    request[1] = std::uint8_t(id);
                    std::vector<std::uint32_t> announced, answering;
                    for (const auto& [address, map] : maps)
                        if (map.at(map_at + std::size_t(id - group - 1) / 8) & 0x80 >> (id - group - 1) % 8)
                            announced.push_back(address);
                    for (const answer& one : on->ask(request))
                        if (one.messages.front()[0] == service + 0x40)
                            answering.push_back(one.address);
                    std::sort(answering.begin(), answering.end());
                    EXPECT_EQ(announced, answering)
                        << name.toStdString() << " service " << int(service) << " id " << id;
                }
            }
        }
    }
}

TEST(car, the_usual_car_carries_what_the_screens_show) {
    const auto on = built_in("can11");
    EXPECT_EQ(first(*on, {0x01, 0x01}), (bytes{0x41, 0x01, 0x82, 0x07, 0x65, 0x04}));
    EXPECT_EQ(first(*on, {0x03}), (bytes{0x43, 0x02, 0x01, 0x33, 0x02, 0x20}));
    EXPECT_EQ(first(*on, {0x07}), (bytes{0x47, 0x01, 0x01, 0x71}));
    EXPECT_EQ(first(*on, {0x06, 0x01}).size(), 1u + 13 * 9);
    EXPECT_EQ(first(*on, {0x06, 0xA0}), (bytes{0x46, 0xA0, 0xF8, 0x00, 0x00, 0x00}));
    EXPECT_EQ(first(*on, {0x02, 0x0C, 0x00, 0x0D, 0x00}),
              (bytes{0x42, 0x0C, 0x00, 0x1A, 0xF8, 0x0D, 0x00, 0x3C}));
    EXPECT_TRUE(on->ask(bytes{0x02, 0x0C, 0x01}).empty());
    EXPECT_EQ(first(*on, {0x22, 0xFF, 0xFF}), (bytes{0x7F, 0x22, 0x31}));
    for (const int pid : {0x0D, 0x11, 0x0C, 0x05, 0x0B, 0x10, 0x06, 0x08, 0x0A, 0x13, 0x46})
        EXPECT_FALSE(first(*on, {0x01, std::uint8_t(pid)}).empty()) << pid;
    for (const int id : {0x0005, 0x003E, 0x102A, 0x114B, 0x114D, 0x1189, 0x124F, 0xF100, 0xF182, 0xF197})
        EXPECT_EQ(first(*on, {0x22, std::uint8_t(id >> 8), std::uint8_t(id)}).at(0), 0x62) << id;
}

TEST(car, clearing_takes_everything_but_permanent_codes) {
    const auto on = built_in("can11");
    double now = 100;
    on->set_clock([&] { return now; });
    EXPECT_EQ(on->ask(bytes{0x04}).size(), 2u);
    EXPECT_EQ(first(*on, {0x01, 0x01}), (bytes{0x41, 0x01, 0x00, 0x77, 0x65, 0x65}));
    EXPECT_EQ(first(*on, {0x03}), (bytes{0x43, 0x00}));
    EXPECT_EQ(first(*on, {0x07}), (bytes{0x47, 0x00}));
    EXPECT_EQ(first(*on, {0x0A}), (bytes{0x4A, 0x01, 0x01, 0x33}));
    EXPECT_EQ(first(*on, {0x02, 0x02, 0x00}), (bytes{0x42, 0x02, 0x00, 0x00, 0x00}));
    EXPECT_TRUE(on->ask(bytes{0x02, 0x0C, 0x00}).empty());
    now += 300; // one round of the cycle
    EXPECT_EQ(first(*on, {0x01, 0x21}), (bytes{0x41, 0x21, 0x00, 0x00}));
    EXPECT_GT(first(*on, {0x01, 0x31}).at(3), 0);

    const auto running = built_in("can11-many-codes");
    EXPECT_EQ(first(*running, {0x04}), (bytes{0x7F, 0x04, 0x22}));
    EXPECT_EQ(first(*running, {0x03}).at(1), 7);
    EXPECT_EQ(first(*running, {0x05, 0x01}), (bytes{0x7F, 0x05, 0x11}));
}

TEST(drive_cycle, values_belong_together) {
    const engine_model turbo{false, 2.0, 60};
    double lowest = 1e9, highest = 0, most_speed = 0, most_pressure = 0, coolant = 0;
    int stops = 0, crossings = 0;
    for (int tenth = 0; tenth < 9000; ++tenth) {
        const double t = tenth / 10.0;
        const drive_state s = drive_at(t, turbo);
        const double air = s.air_flow_gs / (s.manifold_kpa * s.engine_rpm); // only the temperature is left
        lowest = std::min(lowest, air);
        highest = std::max(highest, air);
        most_speed = std::max(most_speed, s.speed_kmh);
        most_pressure = std::max(most_pressure, s.manifold_kpa);
        stops += s.speed_kmh == 0;
        EXPECT_EQ(s.gear == 0, s.speed_kmh < 1);
        EXPECT_TRUE(s.engine_rpm > 700 && s.engine_rpm < 4000) << t;
        EXPECT_GE(s.coolant_c, coolant - 3.1); // the thermostat swings
        coolant = std::max(coolant, s.coolant_c);
        EXPECT_GE(s.distance_km, drive_at(t - 0.1, turbo).distance_km);
        EXPECT_LT(std::abs(s.speed_kmh - drive_at(t - 0.1, turbo).speed_kmh), 1.5) << t;
        crossings += t > 600 && (s.o2_front_v > 0.45) != (drive_at(t - 0.1, turbo).o2_front_v > 0.45);
    }
    EXPECT_LT(highest / lowest, 1.15);
    EXPECT_GT(most_speed, 110);
    EXPECT_GT(most_pressure, barometric_kpa + 5);
    EXPECT_GT(stops, 100);
    EXPECT_GT(coolant, 85);
    EXPECT_GT(crossings, 100);
    EXPECT_EQ(drive_at(steady_moment_s, turbo).speed_kmh, 60);
    EXPECT_EQ(drive_at(std::nan(""), turbo).speed_kmh, drive_at(-5, turbo).speed_kmh);
}

TEST(car_file, mistakes_name_their_line) {
    struct {
        const char* text;
        const char* problem; // how it begins
    } const rows[] = {
        {"", "line 1: the car has no \"ecu\" line"},
        {"ecu 7E8\n", "line 1: the \"protocol\" line must"},
        {"protocol 6\npid 05 7B\n", "line 2: \"pid\" belongs below"},
        {"protocol 6\necu 7E8\nname late\n", "line 3: \"name\" belongs above"},
        {"protocol A\n", "line 1: the protocol is not one of"},
        {"protocol 6\n# comment\n\necu 18DAF110", "line 4: the response address is not 3"},
        {"protocol 6\necu 7E0", "line 2: the response address is not one of"},
        {"protocol 6\necu 7E8\necu 7E8", "line 3: an ECU of that address"},
        {"protocol 6\necu 7E8\nwheel 4", "line 3: no such keyword: \"wheel\""},
        {"protocol 6\necu 7E8\npid 5 7B", "line 3: the PID is not 2 hexadecimal digits: \"5\""},
        {"protocol 6\necu 7E8\npid 05", "line 3: the value is missing"},
        {"protocol 6\necu 7E8\npid 20 00", "line 3: that PID follows"},
        {"protocol 6\necu 7E8\npid 05 7B\npid 05 7C", "line 4: that PID stands above"},
        {"protocol 6\necu 7E8\npid 1C live", "line 3: the drive cycle has no value"},
        {"protocol 3\necu 10\npid 05 01 02 03 04 05 06", "line 3: the value has more than 5 bytes"},
        {"protocol 6\necu 7E8\ncode P4133", "line 3: not a trouble code: \"P4133\""},
        {"protocol 6\necu 7E8\ncode P013", "line 3: not a trouble code"},
        {"protocol 3\necu 10\npermanent P0133", "line 3: permanent codes exist on CAN only"},
        {"protocol 6\necu 7E8\nvin 1G1JC5443R7252367",
         "line 3: the check digit of the VIN (ninth place) should be 4"},
        {"protocol 6\necu 7E8\nvin 1G1JC5444R725236O", "line 3: a VIN has 17"},
        {"protocol 6\necu 7E8\nfreeze 05 7B", "line 3: a \"freeze_code\" line must"},
        {"protocol 6\necu 7E8\nlimit 01 01 max 0000 0000", "line 3: \"limit\" is for the older"},
        {"protocol 6\necu 7E8\ntest 01 01 0A 0E69 0E69", "line 3: the maximum is missing"},
        {"protocol 6\necu 7E8\nmil maybe", "line 3: \"on\" or \"off\" expected: \"maybe\""},
        {"protocol 6\necu 7E8\nmil on off", "line 3: more than expected: \"off\""},
        {"battery nan", "line 1: the voltage is not a number from 0 to 40: \"nan\""},
        {"protocol 6\necu 7E8\ndata F190 \"", "line 3: a text stands between"},
        {"name caf\xC3\xA9", "line 1: the name holds a character"},
    };
    for (const auto& row : rows) {
        std::string problem;
        EXPECT_FALSE(parse_car(row.text, problem)) << row.text;
        EXPECT_TRUE(problem.starts_with(row.problem)) << problem << "\nnot: " << row.problem;
    }
    std::string problem;
    EXPECT_FALSE(parse_car(std::string(70000, '\n'), problem));
    EXPECT_TRUE(parse_car("protocol 5 # KWP\r\n\tecu 12\r\n", problem)) << problem;
    QString sentence;
    EXPECT_FALSE(load_car(QStringLiteral("no such car"), sentence));
    EXPECT_FALSE(sentence.isEmpty());
}
