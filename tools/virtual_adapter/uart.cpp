#include "tools/virtual_adapter/uart.h"

namespace virtual_adapter {

namespace {

constexpr int bits_of_a_byte = 10; // start, eight, stop
constexpr int looks_a_bit = 16;    // for the edge of a start bit

// Bytes on a line, in time that counts the sender's bits.
class line {
public:
    explicit line(std::string_view sent) : m_sent(sent) {}

    double end() const { return double(m_sent.size()) * bits_of_a_byte; }
    bool is_high(double moment) const {
        const std::size_t bit = std::size_t(moment);
        const std::size_t byte = bit / bits_of_a_byte;
        const std::size_t place = bit % bits_of_a_byte;
        if (byte >= m_sent.size() || place == bits_of_a_byte - 1)
            return true;
        return place > 0 && ((unsigned(m_sent[byte]) >> (place - 1)) & 1) != 0;
    }

private:
    std::string_view m_sent;
};

} // namespace

std::string heard_at(int reader_baud, std::string_view sent, int sender_baud) {
    if (reader_baud == sender_baud)
        return std::string(sent);
    if (reader_baud <= 0 || sender_baud <= 0)
        return {};
    const line wire(sent);
    const double bit = double(sender_baud) / reader_baud;
    std::string heard;
    double now = 0;
    const auto skip_while = [&](bool high) {
        while (now < wire.end() && wire.is_high(now) == high)
            now += bit / looks_a_bit;
    };
    for (skip_while(true); now < wire.end(); skip_while(true)) {
        unsigned byte = 0;
        for (int i = 0; i < 8; ++i)
            byte |= unsigned(wire.is_high(now + (i + 1.5) * bit)) << i;
        now += 9.5 * bit;
        if (wire.is_high(now))
            heard += char(byte);
        else
            skip_while(false);
    }
    return heard;
}

} // namespace virtual_adapter
