#include "obd/ecu_names.h"

#include "base/console_log.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include <algorithm>

namespace brivant {

namespace {

// The place of the two characters of the ECU's address in a header; 11-bit CAN has none.
qsizetype address_place(protocol_class kind) {
    return kind == protocol_class::can_29_bit ? 6 : 4;
}

// The address byte that a line holds. A 29-bit CAN line is told from one of the older protocols by where the
// answer to a request of the supported-PID maps or of the monitor status stands in it.
QString address_in_line(const QString& line) {
    struct answer_pair {
        QLatin1String at_29_bit_place;
        QLatin1String not_at_legacy_place;
    };
    // The second and the last pair are unequal on purpose, and "4140" and "4160" are not told apart here.
    static constexpr answer_pair pairs[] = {
        {QLatin1String("4100"), QLatin1String("4100")},
        {QLatin1String("4101"), QLatin1String("4110")},
        {QLatin1String("4120"), QLatin1String("4120")},
        {QLatin1String("4130"), QLatin1String("4140")},
    };
    const QString at_29_bit_place = line.mid(10, 4);
    const QString at_legacy_place = line.mid(6, 4);
    const bool is_29_bit = std::any_of(std::begin(pairs), std::end(pairs), [&](const answer_pair& pair) {
        return at_29_bit_place == pair.at_29_bit_place && at_legacy_place != pair.not_at_legacy_place;
    });
    return line.mid(is_29_bit ? 6 : 4, 2);
}

enum class ecu_role { engine, transmission, other };

// The role that an ECU's display name goes by. `address`: the whole header on 11-bit CAN, else the address
// byte.
ecu_role named_role(const QString& address, bool is_11_bit) {
    if (address == (is_11_bit ? QStringLiteral("7E8") : QStringLiteral("10")))
        return ecu_role::engine;
    if (address == (is_11_bit ? QStringLiteral("7E9") : QStringLiteral("18")))
        return ecu_role::transmission;
    return ecu_role::other;
}

} // namespace

QString pull_ECU(const QString& line) {
    const bool is_11_bit = line.startsWith(QStringLiteral("7E"));
    const QString address = is_11_bit ? line.left(3) : address_in_line(line);
    switch (named_role(address, is_11_bit)) {
    case ecu_role::engine: return QStringLiteral("Engine");
    case ecu_role::transmission: return QStringLiteral("Transmission");
    default: return QStringLiteral("ECU=") + address;
    }
}

QString l_pull_ECU(const QString& header, int protocol) {
    const protocol_class kind = class_of_protocol(protocol);
    if (kind == protocol_class::unknown)
        return {};
    const bool is_11_bit = kind == protocol_class::can_11_bit;
    if (!is_11_bit && header.size() < address_place(kind)) {
        console_log(QStringLiteral("l_pull_ECU: header too short: ") + header);
        return {};
    }
    switch (named_role(is_11_bit ? header : header.sliced(address_place(kind)), is_11_bit)) {
    case ecu_role::engine: return QStringLiteral("Eng.");
    case ecu_role::transmission: return QStringLiteral("Trans.");
    default: return {};
    }
}

bool isThisEngineHeader(const QString& header, int protocol) {
    const protocol_class kind = class_of_protocol(protocol);
    switch (kind) {
    case protocol_class::unknown: return false;
    case protocol_class::can_11_bit: return header == QStringLiteral("7E8");
    default: return header.mid(address_place(kind), 2) == QStringLiteral("10");
    }
}

qsizetype findEngineEcuIdx(const obd_groups& groups, int protocol) {
    const auto engine = std::find_if(groups.begin(), groups.end(), [protocol](const obd_group& group) {
        return isThisEngineHeader(group.header, protocol);
    });
    return engine == groups.end() ? 0 : engine - groups.begin();
}

int thisHeaderIsEngOrTranny(const QString& header) {
    const auto among = [](const QString& address, QLatin1String engine, QLatin1String transmission) {
        return address == engine ? 0 : address == transmission ? 1 : -1;
    };
    // The transmission is "11" here and "18" where ECUs are named: two rules, kept apart on purpose.
    switch (header.size()) {
    case 3: return among(header, QLatin1String("7E8"), QLatin1String("7E9"));
    case 6: return among(header.sliced(4), QLatin1String("10"), QLatin1String("11"));
    case 8: return among(header.sliced(6), QLatin1String("10"), QLatin1String("11"));
    default: return -1;
    }
}

// The first group stands for the engine wherever this is asked, on purpose.
qsizetype findEngIdxFromGroupedMsg(const obd_groups& /*groups*/, qsizetype /*thisEngIdx*/) {
    return 0;
}

bool same_ecu(const QString& header, const QString& other, int protocol) {
    if (header == other)
        return true;
    const bool is_kwp = protocol == 4 || protocol == 5;
    if (!is_kwp || header.size() != header_width(protocol) || other.size() != header.size())
        return false;
    constexpr int address_mode_bits = 0xC;
    const int differing = charToNibble(header[0]) ^ charToNibble(other[0]);
    return (differing & address_mode_bits) == 0 &&
           QStringView(header).sliced(2) == QStringView(other).sliced(2);
}

QString ecu_label(const QString& header) {
    constexpr qsizetype three_bytes = 6;
    constexpr int with_address = 0x80, address_mode = 0xC0; // no other protocol has a first byte above 0x7F
    const int first = header.left(2).toInt(nullptr, 16);
    return header.size() == three_bytes && first >= with_address
               ? QString::number(first & address_mode, 16).toUpper() + header.mid(2)
               : header;
}

} // namespace brivant
