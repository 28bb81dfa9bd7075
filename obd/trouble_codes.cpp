#include "obd/trouble_codes.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "obd/ecu_names.h"
#include "obd/number_text.h"
#include "obd/obd_messages.h"
#include "obd/reply.h"
#include "obd/reply_text.h"

#include <QRegularExpression>
#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype code_digits = 4;
constexpr QChar pad = u'0';

void log_failure() {
    console_log(QStringLiteral("l_pullErrorsFromSingleMsg: a range outside the text"));
}

void add_code(QStringList& codes, QStringView four) {
    const QString code = pull_DTC_code(four);
    if (!code.isEmpty())
        codes += code;
}

void add_code_unless_padding(QStringList& codes, QStringView four) {
    if (four != QLatin1String("0000"))
        add_code(codes, four);
}

void add_all_codes(QStringList& codes, QStringView text) {
    for (qsizetype at = 0; at + code_digits <= text.size(); at += code_digits)
        add_code_unless_padding(codes, text.sliced(at, code_digits));
}

// Characters before the first code: the mode alone, or six when the message begins with anything else.
qsizetype characters_before_codes(const QString& message) {
    const bool mode_first =
        message.startsWith(QLatin1String("43")) || message.startsWith(QLatin1String("47"));
    return mode_first ? 2 : 6;
}

// The codes' part of a CAN message, or nothing when the message ends before it.
//
// A CAN message begins with its byte count, never with the mode, so six characters come before the codes,
// counted from the message's start: byte count, mode, number of codes ("06 43 02" of "06430201330220"). Were
// they counted from the mode on, the first code would be lost; were the mode alone skipped, the number of
// codes would be read as half a code (P0201, P3302).
std::optional<QString> codes_text_on_CAN(const QString& message) {
    // Odd on purpose: the byte count is read as decimal digits ("0A" is 0).
    const qsizetype counted = qsizetype{2} * leading_decimal(QStringView(message).left(2));
    const QString whole =
        message.size() < counted + 2 ? padString(message, pad, counted, true) : message.left(counted + 2);
    const qsizetype before = characters_before_codes(message);
    return whole.size() < before ? std::nullopt : std::optional(whole.sliced(before));
}

QStringList codes_of_single_message(const QString& message) {
    QStringList codes;
    if (const auto text = codes_text_on_CAN(message))
        add_all_codes(codes, *text);
    else
        log_failure();
    return codes;
}

QStringList codes_of_frames(const QStringList& messages) {
    QStringList codes;
    const auto text = codes_text_on_CAN(joined_frames(messages));
    if (!text) {
        log_failure();
        return codes;
    }
    // Odd on purpose: every turn takes the same group, the one behind as many groups as there are frames.
    const qsizetype at = code_digits * messages.size();
    for (qsizetype turn = 0; turn < text->size() / code_digits; ++turn) {
        if (at + code_digits > text->size()) {
            log_failure();
            break;
        }
        add_code_unless_padding(codes, QStringView(*text).sliced(at, code_digits));
    }
    return codes;
}

QStringList codes_on_older_protocols(const QStringList& messages) {
    QStringList codes;
    const qsizetype before = characters_before_codes(messages.first());
    if (messages.size() == 1 && messages.first().size() < before)
        log_failure();
    for (const QString& message : messages)
        add_all_codes(codes, QStringView(message).mid(before));
    return codes;
}

// `message`: "43", the number of codes, the codes.
QStringList counted_codes(const QString& message, const QString& prefix) {
    QStringList codes;
    if (!message.startsWith(prefix) || message.size() < 8)
        return codes;
    const int count = std::max(hex_byte(message, 2), 0);
    for (qsizetype at = 4; at + code_digits <= message.size() && codes.size() < count; at += code_digits) {
        const QString code = pull_DTC_code(QStringView(message).sliced(at, code_digits));
        if (code.isEmpty()) {
            console_log(QStringLiteral("work_reply_to_error_codes_pid-001O: other than hex digits"));
            break;
        }
        codes += code;
    }
    return codes;
}

// Each line: "43", three codes of four digits.
QStringList codes_of_lines(QString reply, const QString& refusal) {
    QStringList codes;
    const QStringList lines =
        reply.remove(QLatin1Char('\n')).remove(QLatin1Char('>')).split(QLatin1Char('\r'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        // Neither the reason of a refusal nor what pads out an error word is a code.
        if (line.startsWith(refusal) || !is_hex_text(line))
            continue;
        const QString padded = padString(line, pad, 14, true);
        const QStringView digits(padded);
        add_code(codes, digits.sliced(2, code_digits));
        for (const qsizetype at : {6, 10}) {
            // Odd on purpose: "00A1" and "C100" are 0 as decimal numbers, and are left out like "0000".
            if (leading_decimal(digits.sliced(at, code_digits)) > 0)
                add_code(codes, digits.sliced(at, code_digits));
        }
    }
    return codes;
}

// Who defines the code, by SAE J2012; the standard keeps B3 and C3 back.
QString owner_of(const QString& code) {
    const QChar group = code.at(1);
    const bool is_engine = code.at(0) == u'P';
    const bool is_makers =
        group == u'1' || (group == u'2' && !is_engine) || (group == u'3' && is_engine && code.at(2) < u'4');
    const bool is_reserved = group == u'3' && (code.at(0) == u'B' || code.at(0) == u'C');
    return is_makers     ? QStringLiteral("maker-specific")
           : is_reserved ? QStringLiteral("reserved by the standard")
                         : QStringLiteral("defined by the standard");
}

// The part of engine and transmission that the third character of P0, P1 and P2 names.
QString part_of_powertrain(const QString& code) {
    static const char* const parts[] = {"fuel and air metering, emission controls",
                                        "fuel and air metering, emission controls",
                                        "fuel and air metering, emission controls",
                                        "ignition or misfire",
                                        "emission controls",
                                        "vehicle speed, idle control, other inputs",
                                        "control module and its outputs",
                                        "transmission",
                                        "transmission"};
    const int number = code.at(2).digitValue();
    if (number < 0) // a letter
        return code.at(1) == u'0' ? QStringLiteral("hybrid or electric drive") : QString();
    return number < 9 ? QString::fromLatin1(parts[number]) : QString();
}

QString system_of(const QString& code) {
    switch (code.at(0).unicode()) {
    case u'C': return QStringLiteral("chassis");
    case u'B': return QStringLiteral("body");
    case u'U': return QStringLiteral("network of the control modules");
    default: break;
    }
    const QString part = code.at(1) == u'3' ? QString() : part_of_powertrain(code);
    return part.isEmpty() ? QStringLiteral("engine and transmission") : part;
}

// What the form alone tells of a code without a description; "" for what is no code.
QString form_of(const QString& code) {
    static const QRegularExpression form(QStringLiteral("^[PCBU][0-3][0-9A-Fa-f]{3}$"));
    if (!form.match(code).hasMatch() || code == QLatin1String("P0000"))
        return {};
    return QStringLiteral(" (by its form %1: %2)").arg(owner_of(code), system_of(code));
}

} // namespace

QString pull_DTC_code(QStringView four) {
    if (four.size() != code_digits || !is_hex_text(four))
        return {};
    const int first = hex_digit(four.front());
    return QLatin1Char("PCBU"[first / 4]) + QString::number(first % 4) + four.sliced(1).toString();
}

obd_groups l_workoutReadCodes(const reply& answers) {
    obd_groups codes;
    for (const ecu_said& ecu : answers.ecus())
        codes.append({ecu.header, l_pullErrorsFromSingleMsg(ecu.bodies, ecu.protocol)});
    return codes;
}

QStringList l_pullErrorsFromSingleMsg(const QStringList& messages, int protocol) {
    if (messages.isEmpty() || class_of_protocol(protocol) == protocol_class::unknown)
        return {};
    if (!is_can(protocol))
        return codes_on_older_protocols(messages);
    // A single frame that an ECU sent twice is no multi-frame answer.
    const bool is_multi_frame = messages.size() > 1 && messages.first().startsWith(QLatin1Char('1'));
    return is_multi_frame ? codes_of_frames(messages) : codes_of_single_message(messages.first());
}

QStringList pull_dtc_body_by_ECU(const obd_groups& groups, const QString& thisECU, int protocol) {
    return pull_dtcGruped_pidSet_by_ECU(groups, thisECU, protocol).value_or(QStringList{not_available});
}

std::optional<QStringList> pull_dtcGruped_pidSet_by_ECU(const obd_groups& groups, const QString& thisECU,
                                                        int protocol) {
    for (const obd_group& group : groups)
        if (same_ecu(group.header, thisECU, protocol))
            return group.pidSet;
    return std::nullopt;
}

QStringList work_reply_to_error_codes_pid(const QString& mode, const QString& this_reply,
                                          const QString& protocol_description) {
    QString text = this_reply;
    text.remove(QLatin1Char(' '));
    QString prefix = mode;
    prefix.replace(QLatin1Char('0'), QLatin1Char('4'));
    if (text.contains(QLatin1Char(':')))
        return counted_codes(grab_CAN_msg(text), prefix);
    if (protocol_description.contains(QLatin1String("CAN"))) // the first line that arrived
        return counted_codes(text.remove(QLatin1Char('>')).trimmed().section(QLatin1Char('\r'), 0, 0),
                             prefix);
    return codes_of_lines(text, QStringLiteral("7F") + mode);
}

QString look_upCode(const QString& code, const QMap<QString, QString>& this_dict) {
    if (code == localised(QStringLiteral("NO_CODES")))
        return localised(QStringLiteral("LOOK_4_PENDING"));
    const auto found = this_dict.constFind(code);
    return found != this_dict.constEnd() ? *found
                                         : QStringLiteral("Code not found in our DB") + form_of(code);
}

} // namespace brivant
