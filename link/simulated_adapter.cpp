#include "link/simulated_adapter.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

struct canned {
    QByteArrayView command;
    const char* reply;
};

// clang-format off
constexpr std::array<canned, 6> replies{{
    {"AT Z\r",  "OK\r\r>"},
    {"AT E0\r", "OK\r\r>"},
    {"AT I\r",  "BSC 001\r\r>"},
    {"AT DP\r", "ISO 9141-2\r\r>"},
    {"01 01\r", "41 01 81 07 6D 00\r\r>"},
    {"03\r",    "43 04 10 00 00 00 00\r43 04 17 00 00 00 00\r\r>"},
}};
// clang-format on

} // namespace

void simulated_adapter::open() {
    if (current == condition::open)
        return;
    current = condition::open;
    Q_EMIT opened();
}

void simulated_adapter::emulate_OBD(const QByteArray& command) {
    const auto known = std::find_if(replies.begin(), replies.end(),
                                    [&](const canned& entry) { return entry.command == command; });
    Q_EMIT OBDevent(QString::fromLatin1(known == replies.end() ? "?\r\r>" : known->reply));
}

} // namespace brivant
