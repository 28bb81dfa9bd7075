#include "obd/pid_answers.h"

#include "obd/number_text.h"
#include "obd/pid_lengths.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype full_frame = 16; // digits
constexpr qsizetype first_frame_data = 12;
constexpr qsizetype next_frame_data = 14;

bool is_whole_bytes(const QString& body) {
    return body.size() >= 2 && body.size() % 2 == 0 && is_hex(body);
}

// Single frames: "06", then six bytes and what fills the frame up.
QString single_message(const QString& body) {
    const qsizetype length = 2 * qsizetype(charToNibble(body[1]));
    return length > 0 && body.size() >= 2 + length ? body.mid(2, length) : QString();
}

// "" when a frame is missing, doubled or of another message.
QString long_message(const QString& first, const QStringList& rest) {
    if (first.size() != full_frame)
        return {};
    const qsizetype length = 2 * (charToNibble(first[1]) * 256 + hex_byte(first, 2));
    QString data = first.sliced(4);
    const qsizetype frames =
        (std::max<qsizetype>(0, length - first_frame_data) + next_frame_data - 1) / next_frame_data;
    if (rest.size() != frames)
        return {};
    for (qsizetype frame = 0; frame < frames; ++frame) {
        if (hex_byte(rest[frame], 0) != 0x20 + static_cast<int>((frame + 1) % 16))
            return {};
        data += rest[frame].sliced(2);
    }
    return data.size() >= length ? data.first(length) : QString();
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
