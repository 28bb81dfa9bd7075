#include "tools/virtual_adapter/live_values.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace virtual_adapter {

namespace {

using quantity = double (*)(const moment&);

// Data = (value + offset) x scale, rounded and held within one or two bytes.
struct row {
    std::uint8_t pid;
    int size;
    double offset;
    double scale;
    quantity value;
};

double trim_of(const moment& m) {
    return m.drive.short_trim;
}
double absolute_load(const moment& m) {
    return m.drive.load * m.drive.manifold_kpa / barometric_kpa;
}

double converter_c(const moment& m) {
    return 300 + 350 * (1 - std::exp(-m.drive.run_time_s / 120));
}

// clang-format off
constexpr row rows[] = {
    {0x04, 1,   0, 255,       [](const moment& m) { return m.drive.load; }},
    {0x05, 1,  40, 1,         [](const moment& m) { return m.drive.coolant_c; }},
    {0x06, 1, 100, 1.28,      trim_of},
    {0x07, 1, 100, 1.28,      [](const moment& m) { return m.drive.long_trim; }},
    {0x08, 1, 100, 1.28,      [](const moment& m) { return -m.drive.short_trim; }},
    {0x09, 1, 100, 1.28,      [](const moment& m) { return m.drive.long_trim - 1; }},
    {0x0A, 1,   0, 1.0 / 3,   [](const moment& m) { return m.drive.rail_kpa; }},
    {0x0B, 1,   0, 1,         [](const moment& m) { return m.drive.manifold_kpa; }},
    {0x0C, 2,   0, 4,         [](const moment& m) { return m.drive.engine_rpm; }},
    {0x0D, 1,   0, 1,         [](const moment& m) { return m.drive.speed_kmh; }},
    {0x0E, 1,  64, 2,         [](const moment& m) { return m.drive.ignition_deg; }},
    {0x0F, 1,  40, 1,         [](const moment& m) { return m.drive.intake_air_c; }},
    {0x10, 2,   0, 100,       [](const moment& m) { return m.drive.air_flow_gs; }},
    {0x11, 1,   0, 255,       [](const moment& m) { return m.drive.throttle; }},
    {0x1F, 2,   0, 1,         [](const moment& m) { return m.drive.run_time_s; }},
    {0x21, 2,   0, 1,         [](const moment& m) { return m.mil_km; }},
    {0x23, 2,   0, 0.1,       [](const moment& m) { return m.drive.rail_kpa; }},
    {0x2C, 1,   0, 255,       [](const moment& m) { return m.drive.egr; }},
    {0x2E, 1,   0, 255,       [](const moment& m) { return m.drive.purge; }},
    {0x2F, 1,   0, 255,       [](const moment& m) { return m.fuel_level; }},
    {0x31, 2,   0, 1,         [](const moment& m) { return m.cleared_km; }},
    {0x33, 1,   0, 1,         [](const moment&) { return barometric_kpa; }},
    {0x3C, 2,  40, 10,        converter_c},
    {0x3D, 2,  40, 10,        converter_c},
    {0x42, 2,   0, 1000,      [](const moment& m) { return m.battery_v - 0.1; }},
    {0x43, 2,   0, 255,       absolute_load},
    {0x44, 2,   0, 32768,     [](const moment& m) { return m.drive.load > 0.8 ? 0.92 : 1.0; }},
    {0x45, 1,   0, 255,       [](const moment& m) { return m.drive.throttle - 0.1; }},
    {0x46, 1,  40, 1,         [](const moment&) { return ambient_c; }},
    {0x47, 1,   0, 255,       [](const moment& m) { return m.drive.throttle + 0.02; }},
    {0x49, 1,   0, 255,       [](const moment& m) { return 0.15 + 0.7 * m.drive.pedal; }},
    {0x4A, 1,   0, 255,       [](const moment& m) { return 0.07 + 0.35 * m.drive.pedal; }},
    {0x4C, 1,   0, 255,       [](const moment& m) { return m.drive.throttle; }},
    {0x5A, 1,   0, 255,       [](const moment& m) { return m.drive.pedal; }},
    {0x5C, 1,  40, 1,         [](const moment& m) { return m.drive.coolant_c - 4; }},
    {0x5E, 2,   0, 20,        [](const moment& m) { return m.drive.fuel_rate_lh; }},
    {0x61, 1, 125, 1,         [](const moment& m) { return 100 * m.drive.load; }},
    {0x62, 1, 125, 1,         [](const moment& m) { return 100 * m.drive.load - 1; }},
    // A front sensor carries the trim that follows it in its second byte; a rear one steers no trim (FF).
    {0x14, 1,   0, 200,       [](const moment& m) { return m.drive.o2_front_v; }},
    {0x18, 1,   0, 200,       [](const moment& m) { return 0.9 - m.drive.o2_front_v; }},
    {0x15, 1,   0, 200,       [](const moment& m) { return m.drive.o2_rear_v; }},
    {0x16, 1,   0, 200,       [](const moment& m) { return m.drive.o2_rear_v; }},
    {0x17, 1,   0, 200,       [](const moment& m) { return m.drive.o2_rear_v; }},
    {0x19, 1,   0, 200,       [](const moment& m) { return m.drive.o2_rear_v - 0.03; }},
    {0x1A, 1,   0, 200,       [](const moment& m) { return m.drive.o2_rear_v; }},
    {0x1B, 1,   0, 200,       [](const moment& m) { return m.drive.o2_rear_v; }},
};
// clang-format on

const row* find(std::uint8_t pid) {
    static const auto index = [] {
        std::array<const row*, 256> made{};
        for (const row& r : rows)
            made[r.pid] = &r;
        return made;
    }();
    return index[pid];
}

unsigned scaled(double value, const row& r) {
    const double most = r.size == 1 ? 255 : 65535;
    return unsigned(std::lround(std::clamp((value + r.offset) * r.scale, 0.0, most)));
}

} // namespace

bool has_live_value(std::uint8_t pid) {
    return find(pid) != nullptr;
}

void append_live_value(bytes& out, std::uint8_t pid, const moment& now) {
    const row* r = find(pid);
    if (r == nullptr)
        return;
    const unsigned data = scaled(r->value(now), *r);
    if (r->size == 2)
        out.push_back(std::uint8_t(data >> 8));
    out.push_back(std::uint8_t(data));
    if (pid == 0x14)
        append_live_value(out, 0x06, now);
    else if (pid == 0x18)
        append_live_value(out, 0x08, now);
    else if (pid >= 0x15 && pid <= 0x1B)
        out.push_back(0xFF);
}

} // namespace virtual_adapter
