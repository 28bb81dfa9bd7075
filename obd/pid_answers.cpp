#include "obd/pid_answers.h"

#include "obd/number_text.h"
#include "obd/pid_lengths.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype full_frame = 16; // digits
constexpr qsizetype next_frame_data = 14;

bool is_whole_bytes(const QString& body) {
    return body.size() >= 2 && body.size() % 2 == 0 && is_hex(body);
}

// A frame is as long as what it carries, or filled up: in any other one characters were lost on the way.
bool has_length(const QString& frame, qsizetype digits) {
    return frame.size() == digits || frame.size() == full_frame;
}

QString single_message(const QString& body) {
    const qsizetype length = 2 * qsizetype(charToNibble(body[1]));
    return length > 0 && has_length(body, 2 + length) ? body.mid(2, length) : QString();
}

// "" when a frame is missing, doubled or of another message.
QString long_message(const QString& first, const QStringList& rest) {
    if (first.size() != full_frame)
        return {};
    const qsizetype length = 2 * (charToNibble(first[1]) * 256 + hex_byte(first, 2));
    QString data = first.sliced(4);
    for (qsizetype frame = 0; frame < rest.size(); ++frame) {
        const qsizetype carried = std::min(next_frame_data, length - data.size());
        if (carried <= 0 || hex_byte(rest[frame], 0) != 0x20 + static_cast<int>((frame + 1) % 16) ||
            !has_length(rest[frame], 2 + carried))
            return {};
        data += rest[frame].mid(2, carried);
    }
    return data.size() == length ? data : QString();
}

} // namespace

QStringList whole_messages(const ecu_said& said) {
    QStringList messages;
    QStringList firsts;
    QStringList rest;
    for (const QString& body : said.bodies) {
        if (!is_whole_bytes(body))
            continue;
        if (body.startsWith(u'0'))
            messages += single_message(body);
        else if (body.startsWith(u'1'))
            firsts += body;
        else if (body.startsWith(u'2'))
            rest += body;
    }
    if (firsts.size() == 1)
        messages += long_message(firsts.first(), rest);
    messages.removeAll(QString());
    return messages;
}

std::optional<QMap<QString, QString>> answers_in(const QString& message, const QStringList& asked) {
    if (!message.startsWith(QLatin1String("41")))
        return std::nullopt;
    QMap<QString, QString> answers;
    for (qsizetype at = 2; at < message.size();) {
        const QString pid = message.mid(at, 2);
        const qsizetype digits = 2 * pid_length(static_cast<int>(convertStr2Byte(pid)));
        const QString data = message.mid(at + 2, digits);
        if (digits == 0 || data.size() < digits || !asked.contains(pid) || answers.contains(pid))
            return std::nullopt;
        answers.insert(pid, QStringLiteral("41") + pid + data);
        at += 2 + digits;
    }
    return answers;
}

} // namespace brivant
