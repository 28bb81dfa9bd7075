#include "obd/standard_reading/ecu_answers.h"

#include "base/refusals.h"

#include <QMap>
#include <algorithm>
#include <utility>

namespace brivant {

namespace {

constexpr qsizetype longest_reply = 16384;
constexpr qsizetype longest_legacy_message = 7;
constexpr qsizetype can_frame = 8; // bytes
constexpr qsizetype first_frame_data = 6;
constexpr qsizetype consecutive_frame_data = 7;

bool is_kwp(int protocol) {
    return protocol == 4 || protocol == 5;
}

qsizetype header_characters(int protocol) {
    switch (protocol) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5: return 6;
    case 6:
    case 8:
    case 11:
    case 12: return 3;
    case 7:
    case 9: return 8;
    default: return 0;
    }
}

bool hex_digits_only(QStringView text) {
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
    });
}

const QString cut_short = QStringLiteral("a frame is cut short");
const QString too_long = QStringLiteral("a line is longer than a frame");
const QString lost_frame = QStringLiteral("a consecutive frame is missing");
const QString no_first_frame = QStringLiteral("the first frame is missing");
const QString damaged_line = QStringLiteral("the adapter received a damaged frame");
const QString broken_off = QStringLiteral("the adapter broke off the answer");
const QString told_apart = QStringLiteral("the frames of several ECUs cannot be told apart without headers");

struct line {
    QString text;  // blanks removed
    QString fault; // what the adapter says is wrong with it
};

// An adapter that echoes repeats the request, whose first byte is a service; it may end in the number of
// answers to wait for, one digit. Three digits are the byte count of a segmented answer.
bool is_echo(const QString& digits) {
    constexpr qsizetype longest_request = 8;
    return hex_digits_only(digits) && digits.startsWith(u'0') && digits.size() != 3 &&
           digits.size() < longest_request;
}

// Where the adapter's word begins for a damaged line ("<RX ERROR") or an answer that was broken off
// ("BUFFER FULL"); -1 without one.
qsizetype trouble_in(const QString& text) {
    qsizetype first = -1;
    for (const char* word : {"<", "DATAERROR", "RXERROR", "CANERROR", "BUSERROR", "FBERROR", "STOPPED",
                             "BUFFERFULL", "LVRESET", "UNABLETOCONNECT"}) {
        const qsizetype at = text.indexOf(QLatin1String(word), 0, Qt::CaseInsensitive);
        if (at >= 0 && (first < 0 || at < first))
            first = at;
    }
    return first;
}

// The lines without blanks; what the adapter says itself is left out.
QList<line> lines_of(const QString& reply) {
    QList<line> lines;
    QString all = reply.left(longest_reply);
    all.replace(u'\n', u'\r').remove(u' ').remove(u'>').remove(QChar(0));
    for (QString& text : all.split(u'\r', Qt::SkipEmptyParts)) {
        const qsizetype trouble = trouble_in(text);
        const QString digits = trouble < 0 ? text : text.left(trouble);
        const qsizetype colon = digits.indexOf(u':');
        if (lines.isEmpty() && is_echo(digits))
            continue;
        if (digits.isEmpty() && !lines.isEmpty())
            lines.append(line{lines.last().text, broken_off});
        if (hex_digits_only(digits) ||
            (colon == 1 && hex_digits_only(digits.left(1)) && hex_digits_only(digits.mid(2))))
            lines.append({digits, trouble < 0 ? QString() : damaged_line});
    }
    return lines;
}

int byte_at(const QByteArray& bytes, qsizetype at) {
    return static_cast<unsigned char>(bytes.at(at));
}

// Frames of one ECU joined by ISO 15765-2.
struct joined_frames {
    qsizetype message = -1; // its index among the messages, -1 while none is open
    qsizetype length = 0;
    int next_sequence = 0;

    bool is_open() const { return message >= 0; }
};

class can_joiner {
public:
    explicit can_joiner(QList<ecu_message>& to) : messages(to) {}

    // A frame with its control byte.
    void take(const QString& ecu, const QByteArray& frame) {
        if (frame.isEmpty() || frame.size() > can_frame) {
            messages.append({ecu, {}, frame.isEmpty() ? cut_short : too_long});
            return;
        }
        const int control = byte_at(frame, 0);
        switch (control >> 4) {
        case 0: single(ecu, frame, control & 0x0F); break;
        case 1: first(ecu, frame); break;
        case 2: consecutive(ecu, frame.mid(1), control & 0x0F); break;
        default: break; // flow control
        }
    }
    void open(const QString& ecu, qsizetype length, const QByteArray& data) {
        joined_frames& frames = open_frames[ecu];
        if (frames.is_open())
            blame(frames, lost_frame);
        if (length < can_frame || data.size() != first_frame_data) {
            messages.append({ecu, {}, cut_short});
            frames = {};
            return;
        }
        messages.append({ecu, data, {}});
        frames = {messages.size() - 1, length, 1};
    }
    void consecutive(const QString& ecu, const QByteArray& data, int sequence) {
        joined_frames& frames = open_frames[ecu];
        if (!frames.is_open()) {
            messages.append({ecu, {}, no_first_frame});
            return;
        }
        if (sequence != frames.next_sequence)
            blame(frames, lost_frame);
        frames.next_sequence = (sequence + 1) & 0x0F;
        ecu_message& message = messages[frames.message];
        const qsizetype due = std::min(frames.length - message.data.size(), consecutive_frame_data);
        if (data.size() < due || data.size() > consecutive_frame_data)
            blame(frames, data.size() < due ? cut_short : too_long);
        message.data.append(data.left(due));
        if (message.data.size() == frames.length)
            frames = {};
    }
    bool is_open(const QString& ecu) const { return open_frames.value(ecu).is_open(); }
    void finish() {
        for (joined_frames& frames : open_frames)
            if (frames.is_open())
                blame(frames, lost_frame);
    }

private:
    void single(const QString& ecu, const QByteArray& frame, int length) {
        const bool whole = length > 0 && frame.size() > length;
        messages.append({ecu, whole ? frame.mid(1, length) : QByteArray(), whole ? QString() : cut_short});
    }
    void first(const QString& ecu, const QByteArray& frame) {
        if (frame.size() < can_frame)
            messages.append({ecu, {}, cut_short});
        else
            open(ecu, (byte_at(frame, 0) & 0x0F) << 8 | byte_at(frame, 1), frame.mid(2));
    }
    void blame(const joined_frames& frames, const QString& fault) {
        QString& first = messages[frames.message].fault;
        if (first.isEmpty())
            first = fault;
    }

    QList<ecu_message>& messages;
    QMap<QString, joined_frames> open_frames;
};

QList<ecu_message> can_with_headers(const QList<line>& lines, qsizetype header) {
    QList<ecu_message> messages;
    can_joiner joiner(messages);
    for (const line& l : lines) {
        const QString ecu = l.text.left(header).toUpper();
        const QString digits = l.text.mid(header);
        if (!l.fault.isEmpty())
            messages.append({ecu, {}, l.fault});
        else if (l.text.contains(u':') || l.text.size() <= header || digits.size() % 2 != 0)
            messages.append({ecu, {}, cut_short});
        else
            joiner.take(ecu, QByteArray::fromHex(digits.toLatin1()));
    }
    joiner.finish();
    return messages;
}

// A byte count of three digits, then segments "0:...", "1:..."; or a line for a single frame.
QList<ecu_message> can_without_headers(const QList<line>& lines) {
    QList<ecu_message> messages;
    can_joiner joiner(messages);
    const QString nobody;
    qsizetype length = 0; // the byte count whose first segment is to come
    for (const line& l : lines) {
        const qsizetype colon = l.text.indexOf(u':');
        const QString digits = l.text.mid(colon + 1);
        if (!l.fault.isEmpty()) {
            messages.append({nobody, {}, l.fault});
        } else if (colon < 0 && l.text.size() == 3) {
            if (joiner.is_open(nobody) || length != 0)
                return {{nobody, {}, told_apart}};
            length = l.text.toInt(nullptr, 16);
        } else if (digits.size() % 2 != 0) {
            messages.append({nobody, {}, cut_short});
        } else if (colon < 0) {
            const QByteArray data = QByteArray::fromHex(digits.toLatin1());
            const bool fits = data.size() < can_frame;
            messages.append({nobody, fits ? data : QByteArray(), fits ? QString() : too_long});
        } else {
            const int sequence = l.text.left(1).toInt(nullptr, 16);
            const QByteArray data = QByteArray::fromHex(digits.toLatin1());
            if (sequence == 0 && !joiner.is_open(nobody))
                joiner.open(nobody, std::exchange(length, 0), data);
            else
                joiner.consecutive(nobody, data, sequence);
        }
    }
    joiner.finish();
    return messages;
}

// Header, data, check byte. On ISO 14230 the length is in the first byte, or behind the header when that says
// 0.
ecu_message legacy_message(const QString& header, const QByteArray& bytes, int protocol) {
    qsizetype from = 3;
    qsizetype length = bytes.size() - from - 1;
    if (is_kwp(protocol) && bytes.size() > from) {
        length = byte_at(bytes, 0) & 0x3F;
        if (length == 0)
            length = byte_at(bytes, from++);
    }
    const bool possible = is_kwp(protocol) || length <= longest_legacy_message;
    if (length <= 0 || bytes.size() <= from + length)
        return {header, {}, cut_short};
    if (bytes.size() != from + length + 1 || !possible)
        return {header, {}, too_long};
    return {header, bytes.mid(from, length), {}};
}

QList<ecu_message> legacy(const QList<line>& lines, const raw_reply& reply) {
    QList<ecu_message> messages;
    for (const line& l : lines) {
        const QString header = reply.headers_shown ? l.text.left(6).toUpper() : QString();
        if (!l.fault.isEmpty())
            messages.append({header, {}, l.fault});
        else if (l.text.size() % 2 != 0 || l.text.contains(u':'))
            messages.append({header, {}, cut_short});
        else if (reply.headers_shown)
            messages.append(legacy_message(header, QByteArray::fromHex(l.text.toLatin1()), reply.protocol));
        else
            messages.append({header, QByteArray::fromHex(l.text.toLatin1()), {}});
    }
    return messages;
}

void add_fault(QString& faults, const QString& fault) {
    if (!faults.contains(fault))
        faults += faults.isEmpty() ? fault : QStringLiteral("; ") + fault;
}

// Why an ECU refused (ISO 14229-1 response codes).
QString refusal(const QByteArray& data) {
    const QString why =
        data.size() > 2 ? refusal_words(byte_at(data, 2)) : QStringLiteral("it does not say why");
    return QStringLiteral("refused by the ECU: %1 (%2)")
        .arg(why, QString::fromLatin1(data.toHex(' ').toUpper()));
}

} // namespace

bool is_iso_15765(int protocol) {
    return protocol >= 6 && protocol <= 12;
}

QString ecu_identity(const QString& header, int protocol) {
    if (!is_kwp(protocol) || header.size() < 2)
        return header;
    constexpr int address_mode = 0xC0;
    return QString::number(header.left(2).toInt(nullptr, 16) & address_mode, 16).toUpper() + header.mid(2);
}

QList<ecu_message> ecu_messages(const raw_reply& reply) {
    const qsizetype header = header_characters(reply.protocol);
    if (header == 0)
        return {};
    const QList<line> lines = lines_of(reply.text);
    if (!is_iso_15765(reply.protocol))
        return legacy(lines, reply);
    return reply.headers_shown ? can_with_headers(lines, header) : can_without_headers(lines);
}

QList<ecu_answer> answers_to(int service, const raw_reply& reply) {
    constexpr int negative = 0x7F;
    constexpr int pending = 0x78;
    constexpr int positive_offset = 0x40;
    QList<ecu_answer> answers;
    for (const ecu_message& message : ecu_messages(reply)) {
        const bool has_data = !message.data.isEmpty();
        const int first = has_data ? byte_at(message.data, 0) : -1;
        const bool refused =
            first == negative && message.data.size() > 1 && byte_at(message.data, 1) == service;
        if (refused && message.data.size() > 2 && byte_at(message.data, 2) == pending)
            continue;
        if (has_data && !refused && first != service + positive_offset)
            continue;
        auto same = [&](const ecu_answer& a) {
            return ecu_identity(a.ecu, reply.protocol) == ecu_identity(message.ecu, reply.protocol);
        };
        auto answer = std::find_if(answers.begin(), answers.end(), same);
        if (answer == answers.end())
            answer = answers.insert(answers.end(), {ecu_identity(message.ecu, reply.protocol), {}, {}});
        const QString fault = refused ? refusal(message.data) : message.fault;
        if (!fault.isEmpty())
            add_fault(answer->fault, fault);
        else if (!answer->messages.contains(message.data))
            answer->messages.append(message.data);
    }
    return answers;
}

} // namespace brivant
