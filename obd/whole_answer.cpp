#include "obd/whole_answer.h"

#include "obd/number_text.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace {
constexpr qsizetype full_frame = 16; // digits
constexpr qsizetype vin_messages = 5;
} // namespace

qsizetype digits_received(const QStringList& bodies) {
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

bool is_whole_can_answer(const QStringList& bodies) {
    const auto is_whole_bytes = [](const QString& body) { return body.size() % 2 == 0 && is_hex(body); };
    if (bodies.isEmpty() || !std::all_of(bodies.begin(), bodies.end(), is_whole_bytes))
        return false;
    const QString& first = bodies.first();
    const int control = hex_byte(first, 0);
    if (control < 0x10) // also one answer given more than once
        return first.size() >= 2 + 2 * control;
    if (control >= 0x20) // the first frame was lost
        return false;
    const qsizetype length = (control & 0xF) * 256 + hex_byte(first, 2);
    return digits_received(bodies) >= 2 * length;
}

bool is_whole_legacy_vin(const QStringList& messages) {
    for (qsizetype i = 0; i < messages.size(); ++i) {
        const QString& message = messages[i];
        if (message.size() < 14 || !is_hex(message) || !message.startsWith(u"4902") ||
            hex_byte(message, 4) != i + 1)
            return false;
    }
    return messages.size() == vin_messages;
}

QString whole_data_without_headers(const QString& reply, const QString& answer) {
    QStringList frames;
    qsizetype length = 0;
    for (const QString& line : prepReply(reply).split(u'\r', Qt::SkipEmptyParts)) {
        const QString text = QString(line).remove(u'\n');
        if (text.size() % 2 == 0 && text.startsWith(answer) && is_hex(text))
            return text;
        if (frames.isEmpty() && length == 0 && text.size() == 3 && is_hex(text))
            length = convertStr2Byte(text);
        else if (text.indexOf(u':') == 1 && charToNibble(text[0]) == frames.size() % 16 &&
                 is_hex(text.mid(2)))
            frames += text;
    }
    if (frames.isEmpty() || length == 0)
        return {};
    const QString data = grab_CAN_msg(QStringLiteral("%1\r").arg(length, 3, 16, QLatin1Char('0')).toUpper() +
                                      frames.join(u'\r'));
    return data.size() == 2 * length && data.startsWith(answer) ? data : QString();
}
