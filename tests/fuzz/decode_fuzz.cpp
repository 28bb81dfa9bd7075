// Any text as a reply through every function that takes replies apart and makes texts and values of them.
//
// An input is the reply; its last character is the protocol as the adapter tells it, one hex digit ("6"), and
// anything else stands for an unknown protocol.

#include "base/console_log.h"
#include "base/string_table.h"
#include "base/text_resources.h"
#include "obd/ecu_names.h"
#include "obd/maker_values.h"
#include "obd/mode6_scaling.h"
#include "obd/number_text.h"
#include "obd/obd_messages.h"
#include "obd/pid_catalogue.h"
#include "obd/pid_translation.h"
#include "obd/readiness.h"
#include "obd/reply.h"
#include "obd/reply_text.h"
#include "obd/supported_pids.h"
#include "obd/trouble_codes.h"
#include "obd/vin.h"
#include "tests/fuzz/must_hold.h"

#include <QSet>
#include <cmath>
#include <cstdint>

namespace brivant {

namespace {

// The longest text that a row of the translations or a line of the lists gives by itself.
constexpr qsizetype longest_own_text = 200;
constexpr qsizetype longest_length_byte = 255;

const text_resources& lists() {
    static const text_resources the_lists;
    return the_lists;
}

bool is_hex_pair(const QString& text) {
    return text.size() == 2 && is_hex(text);
}

void splitting_text(const QString& text) {
    const QString reply = prepReply(text);
    must_hold(reply.size() <= text.size(), "a normalised reply is no longer than what was received");
    must_hold(!reply.contains(u' ') && !reply.contains(u'>'),
              "a normalised reply has no blanks and no prompt");
    must_hold(reply.isEmpty() || (!QStringLiteral("\r\n").contains(reply.front()) &&
                                  !QStringLiteral("\r\n").contains(reply.back())),
              "a normalised reply has no line ends around it");

    const QString lines = clean_a_reply(text);
    must_hold(lines.endsWith(u'\r') && !lines.contains(u'>') && lines.size() <= text.size() + 1,
              "a cleaned reply ends in one line end");
    must_hold(fromHexString(text).size() == (text.size() % 2 == 0 ? text.size() / 2 : 0),
              "two digits, one byte");
    for (const QString& separator : {QStringLiteral("\r"), QStringLiteral("\r\r"), QString()})
        must_hold(Pull_line_into_array(text, separator).join(separator) == text, "pieces join to the text");
    must_hold(myReplace(text, QStringLiteral("\r"), QString()) == QString(text).remove(u'\r'),
              "delimiters without a replacement vanish");
    const QString refused = check_bad_reply(text, QStringLiteral("0C"), reply.mid(2, 2));
    must_hold(refused == text || refused == no_reply, "a bad reply is given back or stands for none");
    replaceStrRegx(text, QStringLiteral("^(\\d*\\.?\\d*V?)"), QStringLiteral("\\1"));
    const qsizetype wanted = convertStr2Byte(reply) % 512;
    for (const QString& padded : {padLeft(text, wanted, reply), padRight(text, wanted, reply),
                                  padString(text, u'0', wanted, true), padString(text, u'0', wanted, false)})
        must_hold(padded.size() <= std::max(text.size(), wanted) && padded.contains(text),
                  "padding keeps the text");
}

void splitting_lines(const QString& text, int protocol) {
    for (const QString& line : reply_lines(text)) {
        for (const QString& address : {QString(), QStringLiteral("7E"), QStringLiteral("10")}) {
            const auto data = pull_PID_msg(line, QStringLiteral("0C"), address);
            must_hold(!data || line.endsWith(*data), "the data of a line is its end");
        }
        must_hold(!pull_ECU(line).isEmpty(), "every line has the name of an ECU");
        must_hold(line.contains(data_of_single_message(line, protocol)),
                  "the data of a single message stands in it");
    }
    const QString frames = grab_CAN_msg(text);
    const QString count = prepReply(text).remove(u'\n').section(u'\r', 0, 0, QString::SectionSkipEmpty);
    must_hold(frames.size() <= 2 * qsizetype(convertStr2Byte(count)) && frames.size() <= text.size(),
              "joined frames are no longer than their count and no longer than the reply");
}

void splitting_messages(const QString& text, int protocol) {
    const obd_messages messages = pullObdMsgs(text, protocol);
    const QStringList arrived = reply_lines(text);
    const QSet<QString> lines(arrived.begin(), arrived.end());
    must_hold(messages.size() <= arrived.size(), "no more messages than lines");
    qsizetype bodies = 0;
    for (const obd_message& message : messages) {
        must_hold(message.header.size() <= header_width(protocol),
                  "a header is as wide as its protocol has it");
        must_hold(header_width(protocol) == 0 || lines.contains(message.header + message.body),
                  "every message is a line that arrived");
        bodies += message.header.isEmpty() ? 0 : 1;
    }

    const reply it({text, protocol, true});
    qsizetype grouped = 0;
    for (const ecu_said& ecu : it.ecus()) {
        const QString& first = ecu.bodies.first();
        grouped += ecu.bodies.size();
        must_hold(!ecu.header.isEmpty() && it.ecu(ecu.header) && it.engine(), "who answered is found");
        must_hold(ecu.data.size() <= std::max(ecu.bodies.join(QString()).size() + not_available.size(),
                                              2 * longest_length_byte),
                  "an answer is no longer than its frames or its length byte");
        must_hold(ecu.value() == not_available || ecu.value().size() <= ecu.data.size(),
                  "its value is a part of it");
        must_hold(ecu.value_of_first_line().size() <= std::max(first.size(), ecu.data.size()) &&
                      l_pullOBDFromSingleMsg(first, protocol).size() <= first.size(),
                  "so is that of a line");
        must_hold(l_pull_ECU(ecu.header, protocol).size() <= 6, "an ECU has a short name");
        thisHeaderIsEngOrTranny(ecu.header);
    }
    must_hold(grouped == bodies, "grouping loses no message");
    const QString data = it.data_without_headers(QStringLiteral("41"));
    must_hold(data.isEmpty() || (data.size() % 2 == 0 && data.startsWith(QLatin1String("41"))),
              "data without headers begin as they were asked for and are whole bytes");
}

void reading_pid_maps(const QString& text, int protocol) {
    group_bitmaps bitmaps;
    for (int group = -1; group <= 3; ++group) {
        handle_00_replies(text, group, bitmaps);
        for (const QString& bitmap : bitmaps)
            must_hold(bitmap.isEmpty() || (bitmap.size() == 8 && is_hex(bitmap)),
                      "a map is eight hex digits or none");
        is_this_code_available(text, text.left(2), group);
    }
    obd_groups available = pullObdMsgsGrouped(pullObdMsgs(text, protocol), protocol);
    for (obd_group& ecu : available) {
        const QString body = ecu.pidSet.first();
        ecu.pidSet = pids_of_bitmap(body, convertStr2Byte(body.left(2)));
        must_hold(ecu.pidSet.size() <= 32 && std::all_of(ecu.pidSet.begin(), ecu.pidSet.end(), is_hex_pair) &&
                      std::is_sorted(ecu.pidSet.begin(), ecu.pidSet.end()),
                  "a map names at most 32 PIDs, in order");
    }
    must_hold(pids_from_json(arrayToJsonStr(available)) == available, "a stored list comes back as it was");
    must_hold(same_pid_sets(available, available, protocol), "a list is the same as itself");
    pids_from_json(text);

    const QStringList samples = text.split(u'\r');
    const QStringList fixed = fixSamplePids(samples, available, protocol);
    must_hold(fixed.size() <= samples.size(), "no more sample PIDs than before");
    if (!available.isEmpty())
        must_hold(isEveryItemInSampleSetAvailable(fixed, {available[findEngineEcuIdx(available, protocol)]},
                                                  protocol) ||
                      available.size() > 1,
                  "what is left for one ECU is what it has");
    isEveryItemInSampleSetAvailable(samples, available, protocol);
}

void translating(const QString& reply) {
    for (const unit_system units : {unit_system::metric, unit_system::imperial}) {
        const QString shown = translateResponse(reply, units, lists());
        must_hold(shown.size() <= std::max(reply.size(), longest_own_text), "a value is a short text");
        const double value = get_OBDVal(reply, units, lists());
        must_hold(std::isfinite(value) || std::isnan(value), "a value is a number or none");
        formatForDisplay(value);
        translateResponse_subaru(reply, units, lists());
        for (const char* pid : {"10", "E4"}) {
            const QString encoded = encode_to_OBD(QLatin1String(pid), value, units);
            must_hold(encoded.size() == 8 && is_hex(encoded), "a computed value becomes a whole reply");
        }
    }
    for (const bool with_prefix : {false, true})
        must_hold(!l_get_pid_name(reply, with_prefix, lists()).isEmpty(), "every PID has a name or none");
    for (const int decimals : {-1, 0, 3, 1000})
        must_hold(formatStringWithDouble(reply, decimals).size() <= std::max<qsizetype>(reply.size(), 128),
                  "a reformatted number stays short");
}

bool is_trouble_code(const QString& code) {
    return code.size() == 5 && QStringLiteral("PCBU").contains(code.front()) && code[1] >= u'0' &&
           code[1] <= u'3' && is_hex(QStringView(code).sliced(2));
}

void reading_codes(const QString& text, int protocol) {
    // An announced length pads what is missing, by 99 bytes at most.
    const qsizetype most = text.size() / 4 + 50;
    for (const obd_group& ecu : l_workoutReadCodes(reply({text, protocol, true})))
        must_hold(ecu.pidSet.size() <= most &&
                      std::all_of(ecu.pidSet.begin(), ecu.pidSet.end(), is_trouble_code),
                  "what an ECU stored are trouble codes, no more than fit into the reply");
    for (const QString& mode : {QStringLiteral("03"), QStringLiteral("07")}) {
        for (const QString& description :
             {QStringLiteral("ISO 15765-4 (CAN 11/500)"), QStringLiteral("SAE J1850 VPW")}) {
            const QStringList codes = work_reply_to_error_codes_pid(mode, text, description);
            // A line gives three codes, however short it is.
            must_hold(codes.size() <= 3 * (text.count(u'\r') + 1) + most &&
                          std::all_of(codes.begin(), codes.end(), is_trouble_code),
                      "codes without headers are trouble codes, no more than the lines hold");
        }
    }
    const QList<readiness_row> monitors = handle_readiness_codes(text, lists());
    must_hold(monitors.size() == 11, "there are eleven monitors");
    readiness_summary(monitors);
}

void reading_the_vin(const QString& text, int protocol) {
    for (const QString& vin :
         {work_out_vin(text), vin_of(reply({text, protocol, true})), vin_of(reply({text, protocol, false}))})
        must_hold(!vin.isEmpty() && vin.size() <= 39, "a VIN fits its place");
    const QString characters = pullAsciiStr(text);
    must_hold(characters.size() <= 39 && !characters.contains(QChar(0)),
              "characters of a reply fit their place");
}

void scaling_test_results(const QString& text) {
    for (const bool with_units : {false, true}) {
        for (const QString& value : {text.mid(2, 4), text.mid(2)})
            must_hold(CAN_scale_and_units(text.left(2), value, with_units).size() <= longest_own_text,
                      "a scaled value is a short text");
    }
    for (const bool is_monitor : {false, true})
        must_hold(!grab_CAN_mode6_OBDMID_TESTID_description(text.left(2), is_monitor, lists()).isEmpty(),
                  "every monitor and test has a name or none");
    QStringList identifiers = text.split(u'\r');
    const qsizetype before = identifiers.size();
    fixArrayForMode6(identifiers);
    must_hold(identifiers.size() <= before && !identifiers.contains(QStringLiteral("20")),
              "what asks for support is no test");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silence_console_log();
    const QString input =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (input.isEmpty())
        return 0;
    const int protocol = hex_digit(input.back());
    const QString text = input.chopped(1);

    splitting_text(text);
    splitting_lines(text, protocol);
    splitting_messages(text, protocol);
    reading_pid_maps(text, protocol);
    reading_codes(text, protocol);
    reading_the_vin(text, protocol);
    scaling_test_results(text);
    translating(text);
    for (const QString& line :
         reply_lines(text)) // as the controllers do it: one ECU's data without its header
        translating(data_of_single_message(line.mid(header_width(protocol)), protocol));
    return 0;
}

} // namespace brivant
