#include "tools/virtual_adapter/bus_time.h"

namespace virtual_adapter {

namespace {

constexpr std::size_t header_and_check = 4;
constexpr double p2_min_ms = 25;
constexpr double p3_min_ms = 55;
constexpr double p4_ms = 5;
constexpr double five_baud_ms = 2000; // the address byte; the rest of the slow start is some 500 ms
constexpr double slow_start_rest_ms = 500;
constexpr double fast_start_ms = 150; // 25 ms low, 25 ms high, one request and its answer

double byte_ms(bus kind) {
    switch (kind) {
    case bus::pwm: return 8 * 0.024;
    case bus::vpw: return 8 * 0.096;
    default: return 10 / 10.4;
    }
}

} // namespace

double message_ms(const protocol& network, std::size_t data_bytes) {
    if (network.kbaud > 0)
        return (network.kind == bus::can11 ? 111.0 : 131.0) / network.kbaud;
    return double(data_bytes + header_and_check) * byte_ms(network.kind);
}

double request_ms(const protocol& network, std::size_t data_bytes) {
    const double gaps = is_k_line(network.kind) ? double(data_bytes + header_and_check - 1) * p4_ms : 0;
    return message_ms(network, data_bytes) + gaps;
}

double shortest_answer_ms(bus kind) {
    return is_k_line(kind) ? p2_min_ms : 0;
}

double rest_ms(bus kind) {
    return is_k_line(kind) ? p3_min_ms : 0;
}

double wake_up_ms(const protocol& network) {
    if (!is_k_line(network.kind))
        return 0;
    return network.slow_init ? five_baud_ms + slow_start_rest_ms : fast_start_ms;
}

} // namespace virtual_adapter
