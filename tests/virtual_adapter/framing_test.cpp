#include "tools/virtual_adapter/arrivals.h"

#include <gtest/gtest.h>

using namespace virtual_adapter;

namespace {

bytes hex(std::string_view text) {
    bytes out;
    for (std::size_t i = 0; i + 1 < text.size(); i += 3)
        out.push_back(std::uint8_t(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
    return out;
}

std::string shown(bus kind, const std::vector<answer>& answers, frame_style style = {}) {
    std::string out;
    for (const arrival& one : arrivals(std::make_shared<std::vector<answer>>(answers), kind))
        append_frame(out, one.what, kind, style);
    return out;
}

frame_style with_headers() {
    return {.headers = true};
}

} // namespace

// Lines that real adapters printed.
TEST(framing, single_lines_look_like_those_of_real_adapters) {
    struct {
        bus kind;
        std::uint32_t address;
        const char* data;
        const char* line;
    } const rows[] = {
        {bus::vpw, 0x10, "41 00 BE 3E B8 11", "48 6B 10 41 00 BE 3E B8 11 FA \r"},
        {bus::vpw, 0x18, "41 00 80 10 80 00", "48 6B 18 41 00 80 10 80 00 C0 \r"},
        {bus::pwm, 0x17, "41 00 80 00 80 03", "41 6B 17 41 00 80 00 80 03 C9 \r"},
        {bus::iso9141, 0x17, "41 00 80 00 80 03", "48 6B 17 41 00 80 00 80 03 0E \r"},
        {bus::iso9141, 0x10, "49 02 01 00 00 00 57", "48 6B 10 49 02 01 00 00 00 57 66 \r"},
        {bus::kwp, 0x12, "41 0C 00 00", "84 F1 12 41 0C 00 00 D4 \r"},
        {bus::kwp, 0x10, "7F 01 11", "83 F1 10 7F 01 11 15 \r"},
        {bus::kwp, 0x10, "46 06 8A 09 60 00 00", "87 F1 10 46 06 8A 09 60 00 00 C7 \r"},
        {bus::can11, 0x7E8, "43 02 01 33 02 20", "7E8 06 43 02 01 33 02 20 \r"},
        {bus::can29, 0x18DAF111, "47 02 22 6D 22 6E", "18 DA F1 11 06 47 02 22 6D 22 6E \r"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(row.kind, {{row.address, {hex(row.data)}}}, with_headers()), row.line);
        EXPECT_EQ(shown(row.kind, {{row.address, {hex(row.data)}}}), row.data + std::string(" \r"));
    }
    frame_style style = with_headers();
    style.pad_single_frames = true;
    EXPECT_EQ(shown(bus::can11, {{0x7E8, {hex("41 05 46")}}}, style), "7E8 03 41 05 46 00 00 00 00 \r");
    style.spaces = false;
    style.linefeeds = true;
    EXPECT_EQ(shown(bus::can29, {{0x18DAF110, {hex("41 05 46")}}}, style), "18DAF1100341054600000000\r\n");
}

// The data sheet's example of two ECUs that answer at the same time.
TEST(framing, long_answers_of_two_ecus_interleave) {
    const std::vector<answer> both = {
        {0x7E8, {hex("49 04 01 35 36 30 32 38 39 34 39 41 43 00 00 00 00 00 00")}},
        {0x7E9, {hex("49 04 01 35 36 30 32 38 39 35 34 41 43 00 00 00 00 00 00")}},
    };
    EXPECT_EQ(shown(bus::can11, both, with_headers()),
              "7E8 10 13 49 04 01 35 36 30 \r7E8 21 32 38 39 34 39 41 43 \r7E9 10 13 49 04 01 35 36 30 \r"
              "7E8 22 00 00 00 00 00 00 00 \r7E9 21 32 38 39 35 34 41 43 \r7E9 22 00 00 00 00 00 00 00 \r");
    EXPECT_EQ(shown(bus::can11, both),
              "013\r0: 49 04 01 35 36 30 \r1: 32 38 39 34 39 41 43 \r013\r0: 49 04 01 35 36 30 \r"
              "2: 00 00 00 00 00 00 00 \r1: 32 38 39 35 34 41 43 \r2: 00 00 00 00 00 00 00 \r");
}
