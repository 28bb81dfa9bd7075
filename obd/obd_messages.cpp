#include "obd/obd_messages.h"

#include "base/console_log.h"
#include "obd/ecu_names.h"
#include "obd/number_text.h"
#include "obd/reply_text.h"
#include <algorithm>
#include <cmath>

namespace brivant {

namespace {

// A first frame and the fifteen consecutive frames 21 to 2F: beyond them the sequence digit begins again at
// 20, and the order of the text is no longer that of the frames.
constexpr qsizetype frames_in_text_order = 16;

// The lines of a normalised reply that can hold a message, in order of arrival; they are parts of its text.
QList<QStringView> message_lines(QStringView text) {
    QList<QStringView> lines = text.split(u'\r', Qt::SkipEmptyParts);
    lines.removeIf([](QStringView line) { return line.contains(u'<'); });
    const auto is_other = [](QStringView line) { return !is_hex(line); };
    const auto others = std::count_if(lines.cbegin(), lines.cend(), is_other);
    if (others > 0 && others < lines.size())
        lines.removeIf(is_other);
    return lines;
}

QString text_of_lines(const QString& reply) {
    return prepReply(reply).replace(u'\n', u'\r');
}

// The lines of one header that are more than the text order can hold go back to their order of arrival.
void restore_long_answers(QList<QStringView>& lines, int width) {
    for (auto begin = lines.begin(); begin != lines.end();) {
        const auto end = std::find_if(
            begin, lines.end(), [&](QStringView line) { return line.left(width) != begin->left(width); });
        if (end - begin > frames_in_text_order)
            std::sort(begin, end, [](QStringView a, QStringView b) { return a.data() < b.data(); });
        begin = end;
    }
}

// By code point, digits before letters, so that no locale changes which ECU comes first.
bool text_order(QStringView a, QStringView b) {
    return a.compare(b, Qt::CaseInsensitive) < 0;
}

void sort_lines(QList<QStringView>& lines, int protocol) {
    if (std::is_sorted(lines.cbegin(), lines.cend(), text_order))
        return;
    std::stable_sort(lines.begin(), lines.end(), text_order);
    if (is_can(protocol))
        restore_long_answers(lines, header_width(protocol));
}

void drop_pending_notices(obd_messages& messages, int protocol) {
    const auto is_notice = [protocol](const obd_message& message) {
        const auto refused = negative_response_in(message.body, protocol);
        return refused && refused->is_pending();
    };
    if (std::none_of(messages.cbegin(), messages.cend(), is_notice))
        return;
    QStringList answered; // the headers of ECUs with an answer, each run once
    for (const obd_message& message : messages) {
        if (!is_notice(message) && (answered.isEmpty() || answered.last() != message.header))
            answered.append(message.header);
    }
    messages.removeIf([&](const obd_message& message) {
        return is_notice(message) &&
               std::any_of(answered.begin(), answered.end(),
                           [&](const QString& header) { return same_ecu(header, message.header, protocol); });
    });
}

QString no_data_for(qsizetype size, qsizetype needed) {
    console_log(QStringLiteral("l_pullOBDFromSingleGroupedMsg: a body of %1 characters, at least %2 needed")
                    .arg(size)
                    .arg(needed));
    return not_available;
}

QString data_of_can_answer(const QStringList& bodies) {
    const bool is_multi_frame = bodies.size() > 1 && bodies.first().startsWith(u'1');
    if (!is_multi_frame)
        return bodies.first().size() < 2 ? no_data_for(bodies.first().size(), 2) : bodies.first().sliced(2);
    for (qsizetype i = 0; i < bodies.size(); ++i)
        if (const qsizetype needed = i == 0 ? 4 : 2; bodies[i].size() < needed)
            return no_data_for(bodies[i].size(), needed);
    // The length is read from its low byte only.
    const QString joined = joined_frames(bodies);
    const auto length = static_cast<qsizetype>(convertStr2Byte(QStringView(joined).first(2)));
    return joined.sliced(2).leftJustified(2 * length, u'0', true);
}

QString data_of_legacy_answer(const QStringList& bodies) {
    if (bodies.size() == 1)
        return bodies.first();
    QString joined = bodies.first().left(4);
    for (const QString& body : bodies) {
        if (body.size() < 6)
            return no_data_for(body.size(), 6);
        joined += QStringView(body).sliced(6);
    }
    return joined;
}

} // namespace

protocol_class class_of_protocol(int protocol) {
    if (protocol >= 1 && protocol <= 5)
        return protocol_class::legacy;
    if (!is_can(protocol))
        return protocol_class::unknown;
    const bool is_29_bit = protocol == 7 || protocol == 9 || protocol == 10;
    return is_29_bit ? protocol_class::can_29_bit : protocol_class::can_11_bit;
}

bool is_can(int protocol) {
    return protocol >= 6 && protocol <= 12;
}

int header_width(int protocol) {
    switch (class_of_protocol(protocol)) {
    case protocol_class::legacy: return 6;
    case protocol_class::can_11_bit: return 3;
    case protocol_class::can_29_bit: return 8;
    default: return 0;
    }
}

QStringList reply_lines(const QString& reply) {
    const QString text = text_of_lines(reply);
    QStringList lines;
    for (const QStringView line : message_lines(text))
        lines.append(line.toString());
    return lines;
}

std::optional<negative_response> negative_response_in(const QString& body, int protocol) {
    const QLatin1String refused(is_can(protocol) ? "037F" : "7F");
    // On the older protocols one of its own, without and with its check byte.
    const bool holds_one = is_can(protocol) ? body.size() >= 8 : body.size() == 6 || body.size() == 8;
    if (!holds_one || !body.startsWith(refused))
        return std::nullopt;
    return negative_response{hex_byte(body, refused.size()), hex_byte(body, refused.size() + 2)};
}

obd_messages pullObdMsgs(const QString& reply, int protocol) {
    const QString text = text_of_lines(reply);
    QList<QStringView> lines = message_lines(text);
    const int width = header_width(protocol);
    if (width == 0)
        return obd_messages(lines.size());
    sort_lines(lines, protocol);
    obd_messages messages;
    messages.reserve(lines.size());
    for (const QStringView line : std::as_const(lines))
        messages.append({line.left(width).toString(), line.mid(width).toString()});
    drop_pending_notices(messages, protocol);
    return messages;
}

obd_groups pullObdMsgsGrouped(const obd_messages& messages, int protocol) {
    obd_groups groups;
    groups.reserve(messages.size());
    for (const obd_message& message : messages) {
        if (message.header.isEmpty())
            continue;
        if (groups.isEmpty() || !same_ecu(groups.constLast().header, message.header, protocol))
            groups.append(obd_group{message.header, {message.body}});
        else
            groups.last().pidSet.append(message.body);
    }
    return groups;
}

QString l_pullOBDFromSingleMsg(const QString& body, int protocol) {
    if (is_can(protocol))
        return body.mid(2);
    return class_of_protocol(protocol) == protocol_class::legacy ? body : QString();
}

QString l_pullOBDFromSingleGroupedMsg(const QStringList& bodies, int protocol) {
    if (bodies.isEmpty() || class_of_protocol(protocol) == protocol_class::unknown)
        return {};
    return is_can(protocol) ? data_of_can_answer(bodies) : data_of_legacy_answer(bodies);
}

QString joined_frames(const QStringList& bodies) {
    QString joined;
    for (const QString& body : bodies)
        joined += QStringView(body).mid(2);
    return joined;
}

QString joined_segments(qsizetype bytes, const QStringList& segments) {
    QString data;
    for (qsizetype i = 0; i < segments.size() && data.size() < 2 * bytes; ++i) {
        QString frame = segments[i].mid(2); // without its index and ":"
        // A first frame of more than six bytes loses its fifth digit, on purpose.
        if (i == 0 && frame.size() >= 13)
            frame.remove(4, 1);
        data += QStringView(frame).left(2 * bytes - data.size());
    }
    return data;
}

QString grab_CAN_msg(const QString& reply) {
    QStringList lines = prepReply(reply).remove(u'\n').split(u'\r', Qt::SkipEmptyParts);
    if (lines.size() < 2 || !is_hex(lines.first()))
        return {};
    const auto bytes = static_cast<qsizetype>(convertStr2Byte(lines.takeFirst()));
    return joined_segments(bytes, lines);
}

std::optional<QString> pull_PID_msg(const QString& line, const QString& this_PID,
                                    const QString& for_this_ECU) {
    const auto message = [&](qsizetype ecu_place, qsizetype data_place) -> std::optional<QString> {
        const bool is_wanted = for_this_ECU.isEmpty() || line.mid(ecu_place, 2) == for_this_ECU;
        return is_wanted ? std::optional(line.sliced(data_place)) : std::nullopt;
    };
    // An 11-bit line is filtered on its first two characters, so that "7E8" asks for no line at all, on
    // purpose.
    if (line.startsWith(QStringLiteral("7E")))
        return line.size() < 5 ? std::nullopt : message(0, 5);
    // Shorter lines have no room for what tells the two other layouts apart.
    if (line.size() < 14)
        return std::nullopt;
    const QString wanted = QStringLiteral("41") + this_PID;
    const bool is_29_bit = line.mid(10, 4) == wanted && line.mid(6, 4) != wanted;
    return is_29_bit ? message(6, 10) : message(4, 6);
}

QString encode_to_OBD(const QString& this_pid, double value, unit_system units) {
    double scaled = 0;
    if (this_pid == QStringLiteral("10"))
        scaled = (units == unit_system::metric ? value : value * 7.5) * 100;
    else if (this_pid == QStringLiteral("E4"))
        scaled = value * 1.609344 / 3.78541178 * 100;
    else
        return {};
    // Both PIDs overflow to the text of "E4", on purpose.
    if (scaled > 65534)
        return QStringLiteral("41E4FFFF");
    const unsigned whole = std::isnan(scaled) || scaled < 0 ? 0 : static_cast<unsigned>(scaled);
    return QStringLiteral("41") + this_pid + QString::number(whole, 16).toUpper().rightJustified(4, u'0');
}

QString data_of_single_message(const QString& body, int protocol) {
    const protocol_class kind = class_of_protocol(protocol);
    if (kind == protocol_class::unknown)
        return {};
    if (kind == protocol_class::legacy)
        return body.left(std::max<qsizetype>(0, body.size() - 2));
    if (body.size() < 2 || !body.startsWith(u'0'))
        return body.mid(2);
    const qsizetype length = charToNibble(body[1]);
    return body.mid(2, 2 * length);
}

} // namespace brivant
