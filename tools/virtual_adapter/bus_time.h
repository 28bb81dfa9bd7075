#pragma once

#include "tools/virtual_adapter/protocols.h"

#include <cstddef>

namespace virtual_adapter {

// What a network takes, in milliseconds.
//
// CAN: a frame of eight bytes has 111 bits, 131 with the long identifier; the stuffed bits are left out.
// K-line: ten bits a byte at 10400 baud, 5 ms between the bytes of a request (P4), at least 25 ms before an
// answer (P2) and at least 55 ms between the last answer and the next request (P3).
// J1850: eight bits a byte, by the mean length of a VPW bit (96 us) or that of a PWM bit (24 us).

// A CAN frame, or a message of that many bytes with header and check byte.
double message_ms(const protocol& network, std::size_t data_bytes);
double request_ms(const protocol& network, std::size_t data_bytes);

double shortest_answer_ms(bus kind); // between a message and the answer
double rest_ms(bus kind);            // between the last answer and the next request

// Waking the bus up before the first request, and trying one protocol after the other.
double wake_up_ms(const protocol& network);
constexpr double search_ms = 1000;

} // namespace virtual_adapter
