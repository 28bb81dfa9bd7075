#include "obd/reply.h"

#include "obd/ecu_names.h"
#include "obd/number_text.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype full_frame = 16; // digits

bool is_whole_bytes(const QString& body) {
    return body.size() % 2 == 0 && is_hex(body);
}

bool is_long(const QString& body, int protocol) {
    return is_can(protocol) && body.startsWith(u'1');
}

// Its length says that there is more: on CAN its second digit, on ISO 14230-4 the lower six bits of its
// header, where bit 7 is set.
bool is_cut(const QString& header, const QString& body, int protocol) {
    if (is_can(protocol))
        return body.size() < 2 + 2 * charToNibble(body.at(1));
    const unsigned format = convertStr2Byte(QStringView(header).left(2));
    const bool has_length = protocol >= 4 && (format & 0x80) != 0;
    return has_length && body.size() - 2 < 2 * qsizetype(format & 0x3F); // without its check byte
}

} // namespace

// --- one ECU -----------------------------------------------------------------------------------------------

qsizetype ecu_said::digits_received() const {
    if (!is_long(bodies.first(), protocol))
        return data.size();
    if (bodies.first().size() != full_frame)
        return 0;
    qsizetype digits = full_frame - 4; // without the control bytes
    for (qsizetype frame = 1; frame < bodies.size(); ++frame) {
        if (hex_byte(bodies[frame], 0) != 0x20 + static_cast<int>(frame % 16))
            break;
        digits += bodies[frame].size() - 2;
        if (bodies[frame].size() != full_frame)
            break; // the last one, or cut
    }
    return digits;
}

ecu_said::damage ecu_said::what_is_wrong() const {
    if (!std::all_of(bodies.begin(), bodies.end(), is_whole_bytes))
        return damage::no_hex;
    const QString& first = bodies.first();
    if (is_long(first, protocol)) {
        const qsizetype length = charToNibble(first[1]) * 256 + hex_byte(first, 2);
        return digits_received() < 2 * length ? damage::frame_missing : damage::none;
    }
    if (is_can(protocol) && !first.startsWith(u'0'))
        return damage::frame_missing; // the first one
    return is_cut(header, first, protocol) ? damage::cut : damage::none;
}

std::optional<negative_response> ecu_said::refused() const {
    return negative_response_in(bodies.first(), protocol);
}

QString ecu_said::value() const {
    if (is_can(protocol) && !is_whole())
        return not_available;
    return bodies.size() == 1 ? data_of_single_message(bodies.first(), protocol) : data;
}

QString ecu_said::value_of_first_line() const {
    const QString& first = bodies.first();
    if (!is_whole_bytes(first))
        return {}; // noise on the link, perhaps in the check byte alone
    if (is_long(first, protocol))
        return data;
    return is_cut(header, first, protocol) ? QString() : data_of_single_message(first, protocol);
}

// --- the reply ---------------------------------------------------------------------------------------------

reply::reply(const raw_reply& what_came) : shared(std::make_shared<parts>(parts{what_came})) {}

reply reply::none(const raw_reply& instead) {
    reply none(instead);
    none.shared->is_given_up = true;
    return none;
}

bool reply::refused_by_adapter() const {
    return text().contains(u'?') && std::none_of(lines().begin(), lines().end(), is_hex);
}

const QStringList& reply::lines() const& {
    if (!shared->lines)
        shared->lines = reply_lines(text());
    return *shared->lines;
}

const QList<ecu_said>& reply::ecus() const& {
    if (!shared->ecus) {
        shared->ecus.emplace();
        for (const obd_group& group : pullObdMsgsGrouped(pullObdMsgs(text(), protocol()), protocol()))
            shared->ecus->append({group.header, group.pidSet, protocol(),
                                  l_pullOBDFromSingleGroupedMsg(group.pidSet, protocol())});
    }
    return *shared->ecus;
}

const ecu_said* reply::engine() const& {
    const ecu_said* named =
        first([](const ecu_said& ecu) { return isThisEngineHeader(ecu.header, ecu.protocol); });
    return named ? named : first([](const ecu_said&) { return true; });
}

const ecu_said* reply::answering() const& {
    const ecu_said* answers =
        first([](const ecu_said& ecu) { return !ecu.data.startsWith(QLatin1String("7F")); });
    return answers ? answers : first([](const ecu_said&) { return true; });
}

const ecu_said* reply::ecu(const QString& header) const& {
    return first([&](const ecu_said& ecu) { return same_ecu(ecu.header, header, ecu.protocol); });
}

QString reply::value_of(const ecu_said* who, const QString& answer) const {
    if (!headers_shown())
        return data_without_headers(answer);
    return who ? who->value() : QString();
}

QString reply::data_without_headers(const QString& answer) const {
    QStringList frames;
    qsizetype length = 0;
    for (const QString& line : prepReply(text()).remove(u'\n').split(u'\r', Qt::SkipEmptyParts)) {
        if (line.startsWith(answer) && is_whole_bytes(line))
            return line;
        if (frames.isEmpty() && length == 0 && line.size() == 3 && is_hex(line))
            length = convertStr2Byte(line);
        else if (line.indexOf(u':') == 1 && charToNibble(line[0]) == frames.size() % 16 &&
                 is_hex(QStringView(line).sliced(2)))
            frames += line;
    }
    const QString data = joined_segments(length, frames);
    return length > 0 && data.size() == 2 * length && data.startsWith(answer) ? data : QString();
}

} // namespace brivant
