#pragma once

namespace virtual_adapter {

enum class bus { pwm, vpw, iso9141, kwp, can11, can29, j1939 };

// One protocol that the adapter knows, by the number that "AT SP" takes.
struct protocol {
    int number; // 1..12
    bus kind;
    int kbaud;        // CAN bit rate; 0 elsewhere
    bool slow_init;   // K-line woken by the five-baud address
    const char* name; // as "AT DP" prints it
};

// The protocol with that number; nullptr outside 1..12.
const protocol* find_protocol(int number);

inline bool is_can(bus kind) {
    return kind == bus::can11 || kind == bus::can29;
}
inline bool is_k_line(bus kind) {
    return kind == bus::iso9141 || kind == bus::kwp;
}

} // namespace virtual_adapter
