#include "link/reply_check.h"

#include "base/console_log.h"
#include "base/refusals.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int retries = 3;
constexpr int longest_timeout_secs = 600;
constexpr qsizetype shown_of_a_fault = 20;

bool is_hex_digit(QChar c) {
    const ushort u = c.unicode();
    return (u >= '0' && u <= '9') || (u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F');
}

bool at_command_confirmed(const QString& reply, const sent_command& command) {
    // A voltage is matched by "^(\d*\.?\d*V?)", which matches the empty text too: any answer will do.
    if (command.text.contains(QLatin1String("AT RV")))
        return true;
    // A protocol number that was found automatically: "A" and a hex digit.
    if (command.text.contains(QLatin1String("AT DPN")))
        return reply.size() >= 2 && reply.at(0).toUpper() == QLatin1Char('A') && is_hex_digit(reply.at(1));
    return string_has_Tokens(reply, command.expectedReply);
}

// "01 00|12.0\r" gives "0100".
QString digits_of_request(const QString& command) {
    QString digits = command.left(command.indexOf(u'|')); // all of it when there is no "|"
    return digits.removeIf([](QChar c) { return c == u'\r' || c == u' '; });
}

// A request answered with headers shown: the data of the first ECU that does not refuse must begin with the
// answer to this very request.
bool message_confirmed(const reply& what_came, const sent_command& command) {
    if (what_came.protocol() == -1 || what_came.text() == QLatin1String("?"))
        return true;
    // Without an ECU (protocol 0, before the car was found) the reply itself is tested.
    const ecu_said* answering = what_came.answering();
    const QString& tested = answering ? answering->data : what_came.text();
    const QString request = digits_of_request(command.text);
    return tested.size() >= request.size() && tested.startsWith(QLatin1Char('4')) &&
           QStringView(tested).mid(1).startsWith(QStringView(request).mid(1));
}

bool confirmed(const reply& what_came, const sent_command& command) {
    if (what_came.no_data()) {
        console_log(QStringLiteral("work_a_rcvdOBD_cmd:No data"));
        return true; // the controller decides what no data means
    }
    if (command.text.contains(u"AT"))
        return at_command_confirmed(what_came.text(), command);
    if (command.has_header)
        return message_confirmed(what_came, command);
    return string_has_Tokens(what_came.text(), command.expectedReply);
}

// "AT Z", "AT WS", "AT I" and "AT @1", as they may be typed.
bool asks_for_greeting(const sent_command& command) {
    const QString digits = digits_of_request(command.text).toUpper();
    const auto begins = [&](const char* word) { return digits.startsWith(QLatin1String(word)); };
    return begins("ATZ") || begins("ATWS") || begins("ATI") || begins("AT@");
}

} // namespace

sent_command command_of(const QString& command, const QString& expectedReply, bool msg_has_hdr) {
    sent_command made{.text = command, .expectedReply = expectedReply, .has_header = msg_has_hdr};
    const qsizetype bar = command.indexOf(u'|');
    if (bar < 0)
        return made;
    made.text = command.first(bar) + u'\r';
    bool ok = false;
    const double seconds = command.sliced(bar + 1).trimmed().toDouble(&ok);
    if (ok && seconds >= 1 && seconds <= longest_timeout_secs)
        made.seconds = static_cast<int>(seconds);
    return made;
}

sent_command as_typed(const QString& command) {
    return {
        .text = command, .expectedReply = positive_reply_of(command), .why = sent_command::purpose::typed};
}

reply_verdict unconfirmed(int no_confirm_count) {
    if (no_confirm_count >= retries)
        return {.result = reply_given_up, .no_confirm_count = 0};
    return {.result = reply_retry, .no_confirm_count = no_confirm_count + 1};
}

reply_verdict work_a_rcvdOBD_cmd(const reply& what_came, const sent_command& command, int no_confirm_count) {
    if (command.is_sent_once)
        no_confirm_count = retries;
    return confirmed(what_came, command) ? reply_verdict{.result = reply_accepted, .no_confirm_count = 0}
                                         : unconfirmed(no_confirm_count);
}

QString positive_reply_of(const QString& command) {
    const QString request = digits_of_request(command).toUpper();
    if (request.startsWith(QLatin1String("AT")))
        return QStringLiteral("OK");
    const unsigned service = convertStr2Byte(QStringView(request).left(2));
    qsizetype echoed = request.size() - 2;
    if (service == 0x02)
        echoed = 2; // the frame number is echoed after the PID, not looked at
    else if (service == 0x22)
        echoed = 4;
    return convertByte2HexStr((service + 0x40) & 0xFF) + request.mid(2, std::max<qsizetype>(0, echoed));
}

bool tells_a_reset(const QString& reply, const QList<sent_command>& unanswered) {
    if (reply.contains(u"LVRESET"))
        return true;
    return reply.contains(u"ELM327v") &&
           std::none_of(unanswered.begin(), unanswered.end(), asks_for_greeting);
}

QString why_given_up(const reply& what_came) {
    const QString& text = what_came.text();
    const auto says = [&](const char* words) { return string_has_Tokens(text, QLatin1String(words)); };
    for (const ecu_said& ecu : what_came.ecus())
        if (const auto refused = ecu.refused())
            return refused->is_pending()
                       ? QStringLiteral("%1 asked for more time and then sent no answer.").arg(ecu.header)
                       : QStringLiteral("%1 refuses this request: %2.")
                             .arg(ecu.header, refusal_words(refused->code));
    if (says("UNABLETOCONNECT|BUSINIT:ERROR|BUSERROR|CANERROR|FBERROR"))
        return QStringLiteral("The adapter answers, the car does not: is the ignition on?");
    if (says("DATAERROR|RXERROR|BUFFERFULL|BUSBUSY"))
        return QStringLiteral("The car answers, but not all of it arrives: is the plug in firmly?");
    if (says("LVRESET|ELM327v|LPALERT|ACTALERT"))
        return QStringLiteral("The adapter has reset itself or goes to sleep: is its voltage too low?");
    if (says("STOPPED"))
        return QStringLiteral("The adapter broke off before the car had answered (STOPPED). Try again.");
    if (text.startsWith(QLatin1String("ERR")))
        return QStringLiteral("The adapter reports a fault of its own (%1): unplug it, plug it in again and "
                              "retry.")
            .arg(text.left(shown_of_a_fault));
    return QStringLiteral("Retried 3 times and Did not get a reply from interface.  "
                          "Check pairing/connections");
}

car_reply check_initial_car_reply(const QString& reply) {
    // The words keep their blanks although a normalised reply has none: on the receiving path neither is
    // ever refused, and the reply check and its retries deal with them.
    if (!reply.contains(u' '))
        return car_reply::accepted;
    if (reply.contains(u"UNABLE TO CONNECT"))
        return car_reply::no_reply_from_car;
    if (reply.contains(u"BUS INIT:") && reply.contains(u"ERROR"))
        return car_reply::init_error;
    return car_reply::accepted;
}

} // namespace brivant
