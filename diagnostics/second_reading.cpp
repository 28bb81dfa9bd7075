#include "diagnostics/second_reading.h"

#include "base/string_table.h"
#include "diagnostics/second_tests.h"
#include "obd/standard_reading/codes_and_texts.h"
#include "obd/standard_reading/pid_values.h"
#include "obd/trouble_codes.h"
#include "toolkit/mac_toolies.h"

#include <algorithm>

namespace {

const QString by_standard = QStringLiteral("By SAE J1979");
const QString nothing = QStringLiteral("no value");

const QStringList& rows_of(result_list list, const diagnostic_results& results) {
    switch (list) {
    case result_list::codes: return results.codesReadArray;
    case result_list::pending: return results.pendingArray;
    case result_list::freeze: return results.freezeArray;
    case result_list::vehicle: return results.vehInfoArray;
    case result_list::misfire: return results.misfireArray;
    case result_list::o2: return results.o2XtraArray;
    default: return results.mode6Array;
    }
}

QString named(const QString& ecu, const QString& text) {
    return ecu.isEmpty() ? text : ecu + QStringLiteral(": ") + text;
}

// The codes of rows that name one, by ECU, so that two lists can be compared whatever their order.
QStringList comparable(const QStringList& rows, int protocol) {
    QStringList codes;
    for (const QString& row : rows)
        if (row.contains(u'|'))
            codes += row.section(u'|', 0, 0) + u'|' + ecu_identity(row.section(u'|', 1), protocol);
    codes.sort();
    return codes;
}

QString codes_in(const QStringList& rows) {
    QStringList codes;
    for (const QString& row : rows)
        if (row.contains(u'|'))
            codes += row.section(u'|', 0, 0);
    return codes.join(QStringLiteral(", "));
}

// The element whose ECU was asked; without one the engine's, else the first that `is_good`.
template <class answers, class check>
auto* answer_of(const answers& all, const kept_reply& kept, const mac_toolies& toolies, check is_good) {
    const auto pick = [&](auto fits) {
        const auto found = std::find_if(all.begin(), all.end(), fits);
        return found == all.end() ? nullptr : &*found;
    };
    if (!kept.ecu.isEmpty())
        return pick([&](const auto& one) {
            return ecu_identity(one.ecu, kept.what_came.protocol()) ==
                   ecu_identity(kept.ecu, kept.what_came.protocol());
        });
    auto* chosen = pick([&](const auto& one) { return is_good(one) && toolies.isThisEngineHeader(one.ecu); });
    if (!chosen)
        chosen = pick(is_good);
    return chosen ? chosen : pick([](const auto&) { return true; });
}

// What the reply says about the PID; nothing when nobody answered.
std::optional<pid_value> value_in(const kept_reply& kept, int service, const mac_toolies& toolies) {
    constexpr int freeze_frame = 2;
    const int pid = kept.request.mid(2, 2).toInt(nullptr, 16);
    const qsizetype data_at = service == freeze_frame ? 3 : 2; // behind the frame's number
    const auto answers = answers_to(service, kept.what_came.raw());
    const auto is_it = [&](const QByteArray& data) {
        return data.size() >= 2 && static_cast<unsigned char>(data.at(1)) == pid;
    };
    const ecu_answer* answer = answer_of(answers, kept, toolies, [&](const ecu_answer& one) {
        return std::any_of(one.messages.begin(), one.messages.end(), is_it);
    });
    if (!answer)
        return std::nullopt;
    const auto message = std::find_if(answer->messages.begin(), answer->messages.end(), is_it);
    if (message != answer->messages.end())
        return decode_pid(pid, message->mid(data_at), toolies.units());
    pid_value absent;
    absent.absent = answer->fault.isEmpty() ? QStringLiteral("no answer to this PID") : answer->fault;
    return absent;
}

} // namespace

second_reading::second_reading(result_list which, const diagnostic_results& what_was_read,
                               const mac_toolies& its_toolies)
    : list(which), results(what_was_read), toolies(its_toolies), own(rows_of(which, what_was_read)) {
    reload();
}

void second_reading::start_again() {
    standard.clear();
    own_notes.clear();
    standard_notes.clear();
    told.clear();
    codes_differ = false;
    changed = 0;
    vin.clear();
    replies_read = 0;
    own_read = 0;
}

void second_reading::reload() {
    standard_shown = toolies.standard_reading();
    const QList<kept_reply> kept = results.kept.value(list);
    if (kept.size() < replies_read || own.size() < own_read)
        start_again();
    // A reply is kept before its rows are added.
    for (; replies_read < kept.size(); ++replies_read) {
        const kept_reply& next = kept.at(replies_read);
        if (next.row + next.rows > own.size())
            break;
        copy_own_rows(next.row);
        read(next);
        own_read = next.row + next.rows;
    }
    copy_own_rows(own.size());
}

void second_reading::copy_own_rows(qsizetype end) {
    for (; own_read < end; ++own_read)
        standard += own.at(own_read);
}

void second_reading::keep_own(const kept_reply& kept) {
    standard += own.mid(kept.row, kept.rows);
}

void second_reading::add(const QString& row, qsizetype own_row, const QString& said,
                         const QString& own_said) {
    ++changed;
    if (own_row >= 0)
        own_notes.insert(static_cast<int>(own_row), QStringLiteral("%1: %2").arg(by_standard, said));
    if (row.isEmpty())
        return;
    standard_notes.insert(static_cast<int>(standard.size()),
                          QStringLiteral("The program's own reading: %1").arg(own_said));
    standard += row;
}

void second_reading::read(const kept_reply& kept) {
    switch (list) {
    case result_list::codes:
    case result_list::pending: return read_codes(kept);
    case result_list::freeze: return kept.row == 0 ? read_freezing_code(kept) : read_freeze_value(kept);
    case result_list::vehicle:
        return kept.request.startsWith(QLatin1String("09")) ? read_vin(kept) : read_value(kept);
    default: return read_tests(kept);
    }
}

void second_reading::read_codes(const kept_reply& kept) {
    const int service = kept.request.toInt(nullptr, 16);
    const QList<ecu_codes> answers = read_trouble_codes(service, kept.what_came.raw());
    QStringList rows;
    for (const ecu_codes& ecu : answers) {
        for (const QString& code : ecu.codes)
            rows += code + u'|' + ecu.ecu;
        if (!ecu.fault.isEmpty())
            told += named(ecu.ecu, ecu.fault);
    }
    const int protocol = kept.what_came.protocol();
    codes_differ = !answers.isEmpty() && comparable(rows, protocol) != comparable(own, protocol);
    if (answers.isEmpty() || (!codes_differ && told.isEmpty()))
        return keep_own(kept);
    if (rows.isEmpty() && !told.isEmpty())
        rows += QStringLiteral("Not readable");
    else if (rows.isEmpty() && list == result_list::codes)
        rows += localised(QStringLiteral("NO_CODES"));
    standard += rows;
}

void second_reading::read_vin(const kept_reply& kept) {
    const QList<ecu_info> answers = read_vehicle_info(info_type::vin, kept.what_came.raw());
    const ecu_info* info =
        answer_of(answers, kept, toolies, [](const ecu_info& one) { return !one.items.isEmpty(); });
    const QString own_vin = own.at(kept.row).section(u':', 1).trimmed();
    const bool is_read = info && !info->items.isEmpty();
    if (!info || (is_read && info->items.first() == own_vin) || (!is_read && own_vin == not_available))
        return keep_own(kept);
    vin = is_read ? info->items.first() : QString();
    const QString said = is_read ? vin : QStringLiteral("(%1)").arg(info->fault);
    add(QStringLiteral(" VIN: %1").arg(said), kept.row, said, own_vin);
}

void second_reading::read_value(const kept_reply& kept) {
    const auto value = value_in(kept, 1, toolies);
    const QString shown = kept.rows > 0 ? own.at(kept.row).section(u'|', 2) : not_available;
    if (!value || value->is_undefined || says_the_same(shown, *value))
        return keep_own(kept);
    const QString pid = kept.request.mid(2);
    const QString text = pid_value_text(*value);
    add(QStringLiteral("%1|%2|%3").arg(pid, toolies.l_get_pid_name(pid, false), text),
        kept.rows > 0 ? kept.row : -1, text, kept.rows > 0 ? shown : nothing);
}

void second_reading::read_freezing_code(const kept_reply& kept) {
    const auto value = value_in(kept, 2, toolies);
    const QString shown = own.at(0).section(QLatin1String(": "), 1).section(u'|', 0, 0).trimmed();
    const QString code = value ? value->states.value(0) : QString();
    const bool no_frame = code.isEmpty() || code == QLatin1String("P0000");
    if (!value || code == shown || (shown.isEmpty() && no_frame))
        return keep_own(kept);
    const QString text = code.isEmpty() ? pid_value_text(*value) : code;
    add(QStringLiteral("Freezed by: %1|%2").arg(text, look_upCode(code, results.P0_Codes)), 0, text,
        shown.isEmpty() ? nothing : shown);
}

void second_reading::read_freeze_value(const kept_reply& kept) {
    const auto value = value_in(kept, 2, toolies);
    const QString& row = own.at(kept.row);
    const QString label = row.section(QLatin1String(": "), 0, 0).trimmed();
    const QString shown = row.section(QLatin1String(": "), 1).trimmed();
    if (!value || value->is_undefined || says_the_same(shown, *value))
        return keep_own(kept);
    const QString text = pid_value_text(*value);
    add(QStringLiteral("%1: %2").arg(label, text), kept.row, text, shown);
}

void second_reading::read_tests(const kept_reply& kept) {
    const second_tests tests =
        read_tests_again(kept, own.mid(kept.row, kept.rows), static_cast<int>(replies_read), toolies.lists());
    for (const second_test& test : tests.pairs) {
        if (test.same)
            standard += own.at(kept.row + test.own_row);
        else
            add(test.row, test.own_row < 0 ? -1 : kept.row + test.own_row, test.said,
                test.own_said.isEmpty() ? nothing : test.own_said);
    }
    const bool says_nothing = kept.rows == 0 && tests.pairs.isEmpty(); // and neither does the program
    if (!tests.fault.isEmpty() && !says_nothing)
        told += tests.fault;
}

QString second_reading::note_on(int row) const {
    return standard_shown ? standard_notes.value(row) : own_notes.value(row);
}

QString second_reading::line() const {
    if (replies_read == 0 || (!differs() && !standard_shown))
        return {};
    if (!differs())
        return QStringLiteral("Read by SAE J1979. The program's own reading is the same");
    const QString because =
        told.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(told.join(QStringLiteral("; ")));
    return is_codes() ? line_of_codes(because) : line_of_values(because);
}

QString second_reading::line_of_codes(const QString& because) const {
    const QString other = codes_in(standard_shown ? own : standard);
    if (standard_shown)
        return QStringLiteral("Read by SAE J1979%1. The program's own reading: %2")
            .arg(because, other.isEmpty() ? QStringLiteral("no codes") : other);
    if (!other.isEmpty())
        return QStringLiteral("By SAE J1979 this reply holds: %1%2").arg(other, because);
    return told.isEmpty() ? QStringLiteral("By SAE J1979 this reply holds no codes")
                          : QStringLiteral("By SAE J1979 this reply cannot be read%1").arg(because);
}

QString second_reading::line_of_values(const QString& because) const {
    const QString values =
        changed == 1 ? QStringLiteral("one value differs") : QStringLiteral("%1 values differ").arg(changed);
    if (changed == 0)
        return QStringLiteral("By SAE J1979 a part of the replies cannot be read%1").arg(because);
    if (standard_shown)
        return QStringLiteral("Read by SAE J1979%1. In the program's own reading %2").arg(because, values);
    if (vin.isEmpty())
        return QStringLiteral("By SAE J1979, %1%2").arg(values, because);
    const QString holds = QStringLiteral("By SAE J1979 this reply holds: %1").arg(vin);
    if (changed == 1)
        return holds + because;
    const QString others = changed == 2 ? QStringLiteral("one more value differs")
                                        : QStringLiteral("%1 more values differ").arg(changed - 1);
    return QStringLiteral("%1, and %2%3").arg(holds, others, because);
}
