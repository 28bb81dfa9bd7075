#include "diagnostics/second_reading.h"

#include "base/string_table.h"
#include "diagnostics/second_tests.h"
#include "obd/standard_reading/codes_and_texts.h"
#include "obd/trouble_codes.h"
#include "toolkit/mac_toolies.h"

#include <algorithm>

namespace brivant {

namespace {

const QString by_standard = QStringLiteral("By SAE J1979");
const QString nothing = QStringLiteral("no value");

QString named(const QString& ecu, const QString& text) {
    return ecu.isEmpty() ? text : ecu + QStringLiteral(": ") + text;
}

// The codes by ECU, so that two lists can be compared whatever their order.
QStringList comparable(const QList<result_row>& rows, int protocol) {
    QStringList codes;
    for (const code_row& row : rows_of<code_row>(rows))
        codes += row.code + u'|' + ecu_identity(row.ecu, protocol);
    codes.sort();
    return codes;
}

QString codes_in(const QList<noted_row>& rows) {
    QStringList codes;
    for (const code_row& row : rows_of<code_row>(plain(rows)))
        codes += row.code;
    return codes.join(QStringLiteral(", "));
}

const value_row* value_in(const answer& one) {
    return one.rows.isEmpty() ? nullptr : std::get_if<value_row>(&one.rows.first());
}

// The element whose ECU was asked; without one the engine's, else the first that `is_good`.
template <class answers, class check>
auto* answer_of(const answers& all, const answer& kept, const mac_toolies& toolies, check is_good) {
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
struct pid_answer {
    std::optional<QByteArray> data;
    QString absent; // why there is none
};
std::optional<pid_answer> pid_answer_of(const answer& kept, const mac_toolies& toolies) {
    constexpr int freeze_frame = 2;
    const int pid = kept.request.mid(2, 2).toInt(nullptr, 16);
    const int service = kept.request.left(2).toInt(nullptr, 16);
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
        return pid_answer{message->mid(data_at), {}};
    return pid_answer{{}, answer->fault.isEmpty() ? QStringLiteral("no answer to this PID") : answer->fault};
}

std::optional<pid_value> standard_value(const answer& kept, const mac_toolies& toolies,
                                        const value_reading& reading) {
    const auto said = pid_answer_of(kept, toolies);
    if (!said)
        return std::nullopt;
    if (said->data)
        return decode_pid(kept.request.mid(2, 2).toInt(nullptr, 16), *said->data, reading);
    return pid_value{{}, {}, said->absent, false};
}

} // namespace

QList<result_row> plain(const QList<noted_row>& rows) {
    QList<result_row> bare;
    for (const noted_row& row : rows)
        bare += row.row;
    return bare;
}

second_reading::second_reading(part its_part, const diagnostic_results& what_was_read,
                               const mac_toolies& its_toolies)
    : which(its_part), results(what_was_read), toolies(its_toolies) {
    reload();
}

void second_reading::start_again() {
    own.clear();
    standard.clear();
    told.clear();
    codes_differ = false;
    changed = 0;
    vin.clear();
    answers_read = 0;
    replies_read = false;
}

void second_reading::reload() {
    standard_shown = toolies.standard_reading();
    const QList<answer> answers = results.answers.value(which);
    if (answers.size() < answers_read)
        start_again();
    QMap<QString, full_scales> told_scales;
    for (const answer& one : answers)
        take_scales(one, told_scales);
    if (told_scales != scales) { // they hold for the values before them, too
        scales = told_scales;
        start_again();
    }
    while (answers_read < answers.size())
        read(answers.at(answers_read++));
}

void second_reading::take_scales(const answer& one, QMap<QString, full_scales>& all) const {
    const QString pid = one.request.mid(2, 2);
    if (which == part::codes || (pid != QLatin1String("4F") && pid != QLatin1String("50")))
        return;
    if (const auto said = pid_answer_of(one, toolies); said && said->data)
        take_full_scales(pid.toInt(nullptr, 16), *said->data, all[one.ecu]);
}

value_reading second_reading::reading_for(const answer& one) const {
    return {toolies.units(), scales.value(one.ecu)};
}

void second_reading::they_agree(const result_row& own_row, const result_row& row) {
    own += {own_row, {}};
    standard += {row, {}};
}

void second_reading::both_say(const QList<result_row>& rows) {
    for (const result_row& row : rows) {
        own += {row, {}};
        standard += {row, {}};
    }
}

void second_reading::they_differ(const result_row* own_row, const QString& own_said,
                                 const std::optional<result_row>& row, const QString& said) {
    ++changed;
    if (own_row)
        own += {*own_row, QStringLiteral("%1: %2").arg(by_standard, said)};
    if (row)
        standard += {*row, QStringLiteral("The program's own reading: %1").arg(own_said)};
}

void second_reading::read(const answer& one) {
    if (one.request.isEmpty() || which == part::extras) // which only their maker defines
        return both_say(one.rows);
    replies_read = true;
    switch (which) {
    case part::codes:
    case part::pending: return read_codes(one);
    case part::freeze:
        return one.request == freezing_code_request ? read_freezing_code(one) : read_freeze_value(one);
    case part::vehicle: return one.request.startsWith(QLatin1String("09")) ? read_vin(one) : read_value(one);
    default: return read_tests(one);
    }
}

void second_reading::read_codes(const answer& one) {
    const int service = one.request.toInt(nullptr, 16);
    const QList<ecu_codes> answers = read_trouble_codes(service, one.what_came.raw());
    QList<result_row> rows;
    for (const ecu_codes& ecu : answers) {
        for (const QString& code : ecu.codes)
            rows += code_row{code, ecu.ecu};
        if (!ecu.fault.isEmpty())
            told += named(ecu.ecu, ecu.fault);
    }
    const int protocol = one.what_came.protocol();
    codes_differ = !answers.isEmpty() && comparable(rows, protocol) != comparable(one.rows, protocol);
    if (answers.isEmpty() || (!codes_differ && told.isEmpty()))
        return both_say(one.rows);
    if (rows.isEmpty() && !told.isEmpty())
        rows += words_row{QStringLiteral("Not readable")};
    else if (rows.isEmpty() && which == part::codes)
        rows += words_row{localised(QStringLiteral("NO_CODES"))};
    for (const result_row& row : one.rows)
        own += {row, {}};
    for (const result_row& row : rows)
        standard += {row, {}};
}

void second_reading::read_vin(const answer& one) {
    const QList<ecu_info> answers = read_vehicle_info(info_type::vin, one.what_came.raw());
    const ecu_info* info =
        answer_of(answers, one, toolies, [](const ecu_info& each) { return !each.items.isEmpty(); });
    const value_row* row = value_in(one);
    const QString own_vin = row ? row->value : QString();
    const bool is_read = info && !info->items.isEmpty();
    if (!info || (is_read && info->items.first() == own_vin) || (!is_read && own_vin == not_available))
        return both_say(one.rows);
    vin = is_read ? info->items.first() : QString();
    const QString said = is_read ? vin : QStringLiteral("(%1)").arg(info->fault);
    they_differ(row ? &one.rows.first() : nullptr, own_vin, value_row{{}, QStringLiteral("VIN"), said, {}},
                said);
}

void second_reading::read_value(const answer& one) {
    const auto value = standard_value(one, toolies, reading_for(one));
    const value_row* row = value_in(one);
    if (!value || value->is_undefined)
        return both_say(one.rows);
    const QString pid = one.request.mid(2);
    const QString text = pid_value_text(*value);
    const value_row other{pid, toolies.get_pid_name_with_pid(pid), text, {}};
    if (!says_the_same(row ? row->value : not_available, *value))
        they_differ(row ? &one.rows.first() : nullptr, row ? row->value : nothing, other, text);
    else if (row && value->absent.isEmpty())
        they_agree(one.rows.first(), other);
    else
        both_say(one.rows);
}

void second_reading::read_freezing_code(const answer& one) {
    const auto value = standard_value(one, toolies, toolies.units());
    const value_row* row = value_in(one);
    const QString shown = row ? row->value : QString();
    const QString code = value ? value->states.value(0) : QString();
    const bool no_frame = code.isEmpty() || code == QLatin1String("P0000");
    if (!value || code == shown || (shown.isEmpty() && no_frame))
        return both_say(one.rows);
    const QString text = code.isEmpty() ? pid_value_text(*value) : code;
    they_differ(&one.rows.first(), shown.isEmpty() ? nothing : shown,
                value_row{{}, QStringLiteral("Freezed by"), text, look_upCode(text, results.P0_Codes)}, text);
}

void second_reading::read_freeze_value(const answer& one) {
    const auto value = standard_value(one, toolies, reading_for(one));
    const value_row* row = value_in(one);
    if (!row || !value || value->is_undefined)
        return both_say(one.rows);
    const QString text = pid_value_text(*value);
    const value_row other{row->pid, row->label.trimmed(), text, {}};
    if (!says_the_same(row->value, *value))
        they_differ(&one.rows.first(), row->value, other, text);
    else if (value->absent.isEmpty())
        they_agree(one.rows.first(), other);
    else
        both_say(one.rows);
}

void second_reading::read_tests(const answer& one) {
    const second_tests tests = read_tests_again(one, static_cast<int>(answers_read), toolies.lists());
    for (const second_test& test : tests.pairs) {
        const result_row* row = test.own_row < 0 ? nullptr : &one.rows.at(test.own_row);
        if (test.same)
            they_agree(*row, *test.row);
        else
            they_differ(row, test.own_said.isEmpty() ? nothing : test.own_said, test.row, test.said);
    }
    const bool says_nothing = one.rows.isEmpty() && tests.pairs.isEmpty(); // and neither does the program
    if (!tests.fault.isEmpty() && !says_nothing)
        told += tests.fault;
}

QString second_reading::line() const {
    if (!replies_read || (!differs() && !standard_shown))
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

} // namespace brivant
