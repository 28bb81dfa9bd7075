#include "tools/virtual_adapter/serial_link.h"

#include <algorithm>

namespace virtual_adapter {

namespace {
constexpr double longest_piece_ms = 2;
} // namespace

double serial_link::at_adapter(double sent_ms) {
    if (sent_ms != m_sent_ms) { // characters sent together travel together
        m_sent_ms = sent_ms;
        m_way_ms = half_trip_ms();
    }
    m_in_is_free_ms = std::max(m_in_is_free_ms, sent_ms + m_way_ms) + m_takes.byte_ms();
    return m_in_is_free_ms;
}

std::vector<timed_text> serial_link::to_client(const exchange& done) {
    std::vector<timed_text> pieces;
    const double way = half_trip_ms();
    double piece_began = 0;
    const auto print = [&](double ready_ms, std::string_view text) {
        for (const char c : text) {
            m_out_is_free_ms = std::max(m_out_is_free_ms, ready_ms) + m_takes.byte_ms();
            m_received_ms = std::max(m_received_ms, m_out_is_free_ms + way);
            if (pieces.empty() || m_received_ms > piece_began + longest_piece_ms) {
                piece_began = m_received_ms;
                pieces.emplace_back();
            }
            pieces.back().at_ms = m_received_ms;
            pieces.back().text += c;
        }
    };
    print(done.received_ms, done.echo);
    std::size_t from = 0;
    for (const exchange::part& part : done.parts) {
        print(part.at_ms, std::string_view(done.reply).substr(from, part.end - from));
        from = part.end;
    }
    return pieces;
}

} // namespace virtual_adapter
