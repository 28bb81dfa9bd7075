// Any text as a reply through the standard reading: nothing is made up, and what is not whole says why.
//
// An input is the reply; its last two characters are the protocol, one hex digit, and "h" where headers are
// shown ("6h", "3-").

#include "obd/number_text.h"
#include "obd/reply_text.h"
#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/pid_values.h"
#include "obd/standard_reading/test_results.h"
#include "tests/fuzz/must_hold.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace brivant {

namespace {

constexpr qsizetype longest_text = 800; // of one value: eleven monitors, or 32 PIDs
constexpr int services = 10;
constexpr int pids = 0x100;

void joining(const raw_reply& reply) {
    const QList<ecu_message> messages = ecu_messages(reply);
    qsizetype bytes = 0;
    for (const ecu_message& message : messages) {
        must_hold(!message.data.isEmpty() || !message.fault.isEmpty(),
                  "a message holds data or says why not");
        must_hold(reply.headers_shown == !message.ecu.isEmpty(), "a message has a header where one is shown");
        bytes += message.data.size();
    }
    must_hold(2 * bytes <= reply.text.size(), "no more bytes than two digits each");
    raw_reply without_blanks = reply;
    without_blanks.text.remove(u' ');
    const QList<ecu_message> packed = ecu_messages(without_blanks);
    must_hold(std::equal(messages.begin(), messages.end(), packed.begin(), packed.end(),
                         [](const ecu_message& a, const ecu_message& b) {
                             return a.ecu == b.ecu && a.data == b.data && a.fault == b.fault;
                         }),
              "blanks say nothing");
}

void answering(const raw_reply& reply) {
    for (int service = 1; service <= services; ++service) {
        const QList<ecu_answer> answers = answers_to(service, reply);
        for (qsizetype i = 0; i < answers.size(); ++i) {
            must_hold(!answers[i].messages.isEmpty() || !answers[i].fault.isEmpty(),
                      "an ECU answered or says why not");
            for (const QByteArray& message : answers[i].messages)
                must_hold(static_cast<unsigned char>(message.at(0)) == service + 0x40 &&
                              answers[i].messages.count(message) == 1,
                          "an answer is one to its service, and stands once");
            for (qsizetype other = 0; other < i; ++other)
                must_hold(ecu_identity(answers[i].ecu, reply.protocol) !=
                              ecu_identity(answers[other].ecu, reply.protocol),
                          "an ECU stands once");
        }
    }
}

bool is_code(const QString& code) {
    return code.size() == 5 && QStringLiteral("PCBU").contains(code.front()) && code[1] <= u'3' &&
           is_hex(QStringView(code).sliced(1)) && code != QLatin1String("P0000");
}

void reading_codes_and_texts(const raw_reply& reply) {
    for (const int service : {0x03, 0x07, 0x0A}) {
        qsizetype codes = 0;
        for (const ecu_codes& ecu : read_trouble_codes(service, reply)) {
            codes += ecu.codes.size();
            must_hold(std::all_of(ecu.codes.begin(), ecu.codes.end(), is_code),
                      "what is listed are trouble codes, and none is padding");
        }
        must_hold(4 * codes <= reply.text.size(), "a code has four digits");
    }
    for (const info_type type :
         {info_type::vin, info_type::calibration_id, info_type::calibration_number, info_type::ecu_name}) {
        for (const ecu_info& info : read_vehicle_info(type, reply)) {
            must_hold(!info.items.isEmpty() || !info.fault.isEmpty(), "there is a text or a reason");
            for (const QString& item : info.items)
                must_hold(item.size() <= 20 && std::all_of(item.begin(), item.end(),
                                                           [](QChar c) { return c >= u' ' && c <= u'~'; }),
                          "a text fits its place and can be read");
        }
    }
}

void reading_tests(const raw_reply& reply) {
    const ecu_tests read = read_tests(reply);
    must_hold(14 * read.tests.size() <= reply.text.size(), "a test has seven bytes at least");
    for (const ecu_test& test : read.tests) {
        must_hold(std::isfinite(test.value) && std::isfinite(test.minimum.value_or(0)) &&
                      std::isfinite(test.maximum.value_or(0)),
                  "a test has numbers");
        must_hold(test_value_text(test, test.value).size() < 40, "its value is a short text");
    }
}

void reading_values(const QString& text) {
    const QByteArray bytes = QByteArray::fromHex(text.toLatin1());
    const QByteArray data = bytes.mid(2);
    const int its_pid = bytes.size() > 1 ? static_cast<unsigned char>(bytes.at(1)) : -1;
    for (const unit_system units : {unit_system::metric, unit_system::imperial}) {
        for (const int pid : {its_pid, 0x67, pids}) {
            const pid_value value = decode_pid(pid, data, units);
            must_hold(!value.quantities.isEmpty() || !value.states.isEmpty() || !value.absent.isEmpty(),
                      "there is a value or a reason");
            for (const quantity& one : value.quantities)
                must_hold(std::isfinite(one.value), "a quantity is a number");
            const QString shown = pid_value_text(value);
            must_hold(!shown.isEmpty() && shown.size() <= longest_text, "a value is a short text");
            says_the_same(shown, value);
            says_the_same(text, value);
        }
    }
    const monitor_status status = read_monitor_status(data);
    must_hold(status.monitors.size() <= 11 && status.codes < 128, "there are at most eleven monitors");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString input =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (input.size() < 2)
        return 0;
    const raw_reply reply{input.chopped(2), hex_digit(input.at(input.size() - 2)), input.back() == u'h'};
    joining(reply);
    answering(reply);
    reading_codes_and_texts(reply);
    reading_tests(reply);
    reading_values(reply.text);
    return 0;
}

} // namespace brivant
