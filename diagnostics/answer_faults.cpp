#include "diagnostics/answer_faults.h"

#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/test_results.h"

namespace brivant {

namespace {

const QString frame_map_request = QStringLiteral("0200"); // of a frame whose code is known
constexpr qsizetype most_shown = 40;                      // characters of a reply that is no answer

QString named(const QString& ecu, const QString& text) {
    return ecu.isEmpty() ? text : ecu + QStringLiteral(": ") + text;
}

// Those of the ECU that was meant, of all where none was.
template <class answers>
QStringList faults_in(const answers& of_ecus, const answer& kept) {
    const int protocol = kept.what_came.protocol();
    QStringList faults;
    for (const auto& one : of_ecus)
        if (!one.fault.isEmpty() &&
            (kept.ecu.isEmpty() || ecu_identity(one.ecu, protocol) == ecu_identity(kept.ecu, protocol)))
            faults += named(one.ecu, one.fault);
    return faults;
}

QStringList faults_by_ecu(int service, const answer& kept) {
    const raw_reply& came = kept.what_came.raw();
    constexpr int stored_codes = 0x03, test_results = 0x06, pending_codes = 0x07, permanent_codes = 0x0A;
    switch (service) {
    case stored_codes:
    case pending_codes:
    case permanent_codes: return faults_in(read_trouble_codes(service, came), kept);
    case test_results: {
        const QString fault = read_tests(came).fault;
        return fault.isEmpty() ? QStringList() : QStringList(fault);
    }
    default: return faults_in(answers_to(service, came), kept);
    }
}

// What the request was for, where a list shows the answers to several.
QString about(const QString& request) {
    const QString service = request.left(2);
    if (service == QLatin1String("06"))
        return QStringLiteral("Test %1: ").arg(request.mid(2));
    if (service == QLatin1String("02"))
        return QStringLiteral("Freeze frame: ");
    return service == QLatin1String("09") ? QStringLiteral("VIN: ") : QString();
}

// Why the reply as a whole is no answer; "" when it is one, or when the car is silent.
QString why_no_answer(const answer& one, bool is_announced) {
    const reply came(one.what_came.raw());
    if (came.refused_by_adapter())
        return QStringLiteral("the adapter does not know this request (?)");
    if (came.no_data() || came.is_none() || came.text().isEmpty())
        return is_announced || one.what_came.is_none() ? QStringLiteral("no answer") : QString();
    if (one.what_came.is_none())
        return QStringLiteral("no answer that can be read (%1)")
            .arg(QString(came.text()).replace(u'\r', u' ').left(most_shown));
    return {};
}

} // namespace

QStringList faults_of(const answer& one) {
    if (one.request.isEmpty())
        return {};
    constexpr int test_results = 0x06;
    const int service = one.request.left(2).toInt(nullptr, 16);
    const bool is_test = service == test_results;
    // On CAN every ECU tells its codes, none of them with a count of 0.
    const bool is_announced = is_test || one.request == frame_map_request ||
                              (is_can(one.what_came.protocol()) && (service == 0x03 || service == 0x07));
    QStringList faults = faults_by_ecu(service, one);
    if (const QString why = why_no_answer(one, is_announced); faults.isEmpty() && !why.isEmpty())
        faults += why;
    for (QString& fault : faults)
        fault = about(one.request) + fault;
    return faults;
}

words_row not_read(const QStringList& faults) {
    return {QStringLiteral("Not read (%1)").arg(faults.join(QStringLiteral("; ")))};
}

} // namespace brivant
