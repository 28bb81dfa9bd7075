#include "tools/virtual_adapter/car_catalogue.h"
#include "tools/virtual_adapter/ceiling.h"
#include "tools/virtual_adapter/kinds.h"
#include "tools/virtual_adapter/timed_adapter.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace virtual_adapter;

namespace {

std::shared_ptr<car> car_named(const char* name) {
    QString problem;
    return load_car(QString::fromLatin1(name), problem);
}

const std::vector<std::uint8_t> eight = {0x0C, 0x0D, 0x04, 0x05, 0x0B, 0x0F, 0x11, 0x1F};

// Values a second of a client that sends these commands over and over, each with the prompt of the last.
double reached(const std::shared_ptr<car>& on, adapter_options options, const std::vector<std::string>& once,
               const std::vector<std::string>& sweep, double values) {
    options.stored_protocol = on->network().number;
    options.stored_automatic = false;
    timed_adapter adapter(on, options);
    double now_ms = 0;
    const auto ask = [&](const std::string& command) {
        const std::vector<timed_text> pieces = adapter.send(command + '\r', now_ms);
        EXPECT_TRUE(pieces.back().text.ends_with('>')) << command;
        EXPECT_EQ(pieces.back().text.find('?'), std::string::npos) << command;
        now_ms = pieces.back().at_ms;
    };
    for (const char* command : {"ATE0", "ATS0", "ATH1", "0100"})
        ask(command);
    for (const std::string& command : once)
        ask(command);
    const double began_ms = now_ms;
    constexpr int sweeps = 150;
    for (int i = 0; i < sweeps; ++i)
        for (const std::string& command : sweep)
            ask(command);
    return values * sweeps * 1000 / (now_ms - began_ms);
}

// The commands of a ceiling's lines: "COMMAND: ...".
void read_plan(const ceiling& best, std::vector<std::string>& once, std::vector<std::string>& sweep) {
    for (const std::string& line : best.lines) {
        const std::size_t end = line.starts_with("STPX") ? line.find(": ") : line.find(':');
        if (line.ends_with(": once"))
            once.push_back(line.substr(0, end));
        else if (line.find(" to the adapter") != std::string::npos)
            sweep.push_back(line.substr(0, end));
    }
}

} // namespace

// Who follows the plan reaches it, whatever the spread, and no simpler client does.
TEST(ceiling, is_reached_by_its_plan_and_by_nobody_else) {
    for (const std::string_view kind : adapter_kinds()) {
        for (const char* name : {"can11", "can29", "kwp", "iso9141"}) {
            const auto on = car_named(name);
            const adapter_options options = *adapter_of_kind(kind);
            std::vector<std::uint8_t> pids;
            for (const std::uint8_t pid : eight)
                if (on->description().ecus[0].pids.contains(pid))
                    pids.push_back(pid);
            const ceiling best = ceiling_of(on, options, pids);
            std::vector<std::string> once;
            std::vector<std::string> sweep;
            read_plan(best, once, sweep);
            const double by_plan = reached(on, options, once, sweep, double(pids.size()));
            EXPECT_NEAR(by_plan / best.values_per_second, 1, 0.02) << kind << ' ' << name;

            std::vector<std::string> bare;
            std::vector<std::string> single;
            for (const std::uint8_t pid : pids) {
                const char digits[] = {"0123456789ABCDEF"[pid >> 4], "0123456789ABCDEF"[pid & 0xF], '\0'};
                bare.push_back(std::string("01") + digits);
                single.push_back(bare.back() + "1");
            }
            EXPECT_LT(reached(on, options, {}, bare, double(pids.size())), best.values_per_second)
                << kind << ' ' << name;
            EXPECT_LT(reached(on, options, once, single, double(pids.size())), best.values_per_second * 1.02)
                << kind << ' ' << name;
        }
    }
}

TEST(ceiling, can_be_added_up_by_hand) {
    const auto on = car_named("can11");
    adapter_options options;
    options.time = timing{
        .ecu_ms = {8}, .ecu_spread_ms = 4, .line_ms = 0, .baud = 10000, .round_trip_ms = 18, .jitter_ms = 4};
    const std::uint8_t speed[] = {0x0D};
    // 20 there and back, "010D1" and its return, 1, frame, 10, frame, "7E803410D3C" and three more
    const ceiling one = ceiling_of(on, options, speed);
    EXPECT_NEAR(one.values_per_second, 1000 / (20 + 6 + 1 + 0.222 + 10 + 0.222 + 14), 1e-6);
    const std::uint8_t unknown[] = {0x0D, 0x9F};
    EXPECT_EQ(ceiling_of(on, options, unknown).values_per_second, one.values_per_second);
    EXPECT_EQ(ceiling_of(on, options, unknown).lines.front(), "PID 9F: no ECU has it");
    EXPECT_EQ(ceiling_of(on, options, {}).values_per_second, 0);
}

// With PIDs of two ECUs each sweep changes the header, or an ST chip is told with each request.
TEST(ceiling, two_ecus_cost_a_change_of_header) {
    car_description two = car_named("can11")->description();
    two.ecus[0].pids.erase(0x0C);
    ASSERT_TRUE(two.ecus[1].pids.contains(0x0C));
    const auto on = std::make_shared<car>(two);
    const std::uint8_t pids[] = {0x0C, 0x0B};
    for (const char* kind : {"elm327-v1.4", "stn"}) {
        const ceiling best = ceiling_of(on, *adapter_of_kind(kind), pids);
        std::vector<std::string> once;
        std::vector<std::string> sweep;
        read_plan(best, once, sweep);
        EXPECT_EQ(once.size(), 0u);
        double values = 2;
        if (sweep.size() == 4) { // to one, to the other, and back again: a change a sweep
            once = {sweep[0]};
            sweep = {sweep[1], sweep[2], sweep[3], sweep[3], sweep[0], sweep[1]};
            values = 4;
        } else {
            EXPECT_EQ(sweep.size(), 2u) << kind;
        }
        EXPECT_NEAR(reached(on, *adapter_of_kind(kind), once, sweep, values) / best.values_per_second, 1,
                    0.02)
            << kind;
    }
}
