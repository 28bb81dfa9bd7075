#include "obd/standard_reading/codes_and_texts.h"

#include <algorithm>

namespace brivant {

namespace {

const QString too_short = QStringLiteral("the answer ends before its last code");
const QString other_count = QStringLiteral("the answer's length does not fit its count of codes");
const QString other_length = QStringLiteral("the answer's length does not fit its count of items");
const QString never_programmed = QStringLiteral("never programmed");
const QString no_text = QStringLiteral("holds bytes that are no text");
const QString lost_message = QStringLiteral("a part of the answer is missing");

int byte_at(const QByteArray& bytes, qsizetype at) {
    return static_cast<unsigned char>(bytes.at(at));
}

// The pairs from `at` on; 0000 fills up messages.
void take_codes(const QByteArray& data, qsizetype at, qsizetype pairs, QStringList& codes) {
    for (qsizetype i = 0; i < pairs; ++i, at += 2)
        if (byte_at(data, at) != 0 || byte_at(data, at + 1) != 0)
            codes.append(trouble_code_name(byte_at(data, at), byte_at(data, at + 1)));
}

// CAN: behind the service byte the count of codes, then the codes. Zeros may fill up the answer.
QString take_counted_codes(const QByteArray& data, QStringList& codes) {
    constexpr qsizetype codes_from = 2;
    if (data.size() < codes_from)
        return too_short;
    const qsizetype announced = byte_at(data, 1);
    const qsizetype held = (data.size() - codes_from) / 2;
    take_codes(data, codes_from, std::min(held, announced), codes);
    if (held < announced)
        return too_short;
    const QByteArray rest = data.mid(codes_from + 2 * announced);
    return rest.size() % 2 != 0 || rest.count('\0') != rest.size() ? other_count : QString();
}

// The older protocols: behind the service byte three codes a message.
QString take_uncounted_codes(const QByteArray& data, QStringList& codes) {
    take_codes(data, 1, (data.size() - 1) / 2, codes);
    return data.size() % 2 == 0 ? too_short : QString();
}

// The bytes of an item, and how many messages of four bytes carry one on the older protocols.
struct item_size {
    qsizetype bytes;
    qsizetype messages;
};
item_size size_of(info_type type) {
    switch (type) {
    case info_type::vin: return {17, 5};
    case info_type::calibration_id: return {16, 4};
    case info_type::calibration_number: return {4, 1};
    case info_type::ecu_name: return {20, 5};
    }
    return {0, 0};
}

void take_item(const QByteArray& bytes, info_type type, ecu_info& info) {
    if (type == info_type::calibration_number) {
        info.items.append(QString::fromLatin1(bytes.toHex().toUpper()));
        return;
    }
    QByteArray text = bytes;
    while (text.startsWith('\0'))
        text.remove(0, 1);
    while (text.endsWith('\0'))
        text.chop(1);
    if (type == info_type::ecu_name) // an acronym and a name, each filled up
        text.replace('\0', "");
    const auto is = [&text](auto what) { return std::all_of(text.begin(), text.end(), what); };
    if (text.trimmed().isEmpty() || is([](char c) { return c == '\xFF'; }))
        info.fault = never_programmed;
    else if (!is([](char c) { return c >= 0x20 && c <= 0x7E; }))
        info.fault = no_text;
    else
        info.items.append(QString::fromLatin1(text).trimmed());
}

// On CAN one message: the count of items, then their bytes.
void items_of_one_message(const QByteArray& data, info_type type, ecu_info& info) {
    constexpr qsizetype items_from = 3;
    const item_size size = size_of(type);
    const qsizetype count = data.size() > 2 ? byte_at(data, 2) : 0;
    if (count == 0 || data.size() < items_from + count * size.bytes) {
        info.fault = lost_message;
        return;
    }
    if (data.size() != items_from + count * size.bytes) {
        info.fault = other_length;
        return;
    }
    for (qsizetype i = 0; i < count; ++i)
        take_item(data.mid(items_from + i * size.bytes, size.bytes), type, info);
}

// A damaged line tells more.
void lose_a_message(ecu_info& info) {
    if (info.fault.isEmpty())
        info.fault = lost_message;
}

// On the older protocols numbered messages of four bytes, from 1 on. The VIN is filled up in front.
void items_of_messages(QList<QByteArray> messages, info_type type, ecu_info& info) {
    constexpr qsizetype message_size = 7;
    const item_size size = size_of(type);
    std::sort(messages.begin(), messages.end(),
              [](const QByteArray& a, const QByteArray& b) { return a.mid(2, 1) < b.mid(2, 1); });
    QByteArray all;
    for (qsizetype i = 0; i < messages.size(); ++i) {
        if (messages.at(i).size() != message_size || byte_at(messages.at(i), 2) != i + 1)
            return lose_a_message(info);
        all.append(messages.at(i).mid(3));
    }
    if (messages.size() % size.messages != 0)
        return lose_a_message(info);
    for (qsizetype at = 0; at < all.size(); at += 4 * size.messages)
        take_item(all.mid(at, 4 * size.messages).last(size.bytes), type, info);
}

} // namespace

QString trouble_code_name(int first_byte, int second_byte) {
    static constexpr char16_t systems[] = u"PCBU";
    return QStringLiteral("%1%2%3%4")
        .arg(QChar(systems[first_byte >> 6 & 3]))
        .arg(first_byte >> 4 & 3)
        .arg(first_byte & 0x0F, 1, 16)
        .arg(second_byte, 2, 16, QLatin1Char('0'))
        .toUpper();
}

QList<ecu_codes> read_trouble_codes(int service, const raw_reply& reply) {
    QList<ecu_codes> result;
    for (const ecu_answer& answer : answers_to(service, reply)) {
        ecu_codes codes{answer.ecu, {}, answer.fault};
        for (const QByteArray& data : answer.messages) {
            const QString fault = is_iso_15765(reply.protocol) ? take_counted_codes(data, codes.codes)
                                                               : take_uncounted_codes(data, codes.codes);
            if (!fault.isEmpty())
                codes.fault = fault;
        }
        result.append(codes);
    }
    return result;
}

QList<ecu_info> read_vehicle_info(info_type type, const raw_reply& reply) {
    QList<ecu_info> result;
    for (const ecu_answer& answer : answers_to(0x09, reply)) {
        ecu_info info{answer.ecu, {}, answer.fault};
        QList<QByteArray> messages = answer.messages;
        messages.removeIf([type](const QByteArray& data) {
            return data.size() < 2 || byte_at(data, 1) != static_cast<int>(type);
        });
        if (messages.isEmpty() && info.fault.isEmpty())
            continue;
        if (!is_iso_15765(reply.protocol))
            items_of_messages(messages, type, info);
        else // several ones without headers
            for (const QByteArray& message : messages)
                items_of_one_message(message, type, info);
        result.append(info);
    }
    return result;
}

} // namespace brivant
