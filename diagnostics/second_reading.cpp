#include "diagnostics/second_reading.h"

#include "base/string_table.h"
#include "diagnostics/answer_faults.h"
#include "diagnostics/second_codes.h"
#include "diagnostics/second_tests.h"
#include "obd/standard_reading/codes_and_texts.h"
#include "obd/trouble_codes.h"
#include "toolkit/mac_toolies.h"

#include <algorithm>

namespace brivant {

namespace {

const QString by_standard = QStringLiteral("By SAE J1979");
const QString nothing = QStringLiteral("no value");

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

QString remark_on(const result_row& row) {
    const auto* test = std::get_if<test_row>(&row);
    return test && test->was_not_run() ? QStringLiteral("not run since clearing") : QString();
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
    for (QList<noted_row>* rows : {&own, &standard, &only_own, &only_standard})
        rows->clear();
    told.clear();
    unanswered.clear();
    weighty = false;
    changed = 0;
    vin.clear();
    answers_read = 0;
    replies_read = false;
}

void second_reading::reload() {
    standard_shown = toolies.standard_reading();
    const QList<answer> answers = results.answers.value(which);
    if (answers.size() < answers_read) {
        start_again();
        scales.clear();
    }
    QMap<QString, full_scales> told_scales = scales;
    for (qsizetype place = answers_read; place < answers.size(); ++place)
        take_scales(answers.at(place), told_scales);
    if (told_scales != scales) { // they hold for the values before them, too
        scales = told_scales;
        start_again();
    }
    while (answers_read < answers.size())
        read(answers.at(answers_read++));
    if (only_other().isEmpty())
        return;
    const QString heading = standard_shown ? QStringLiteral("In the program's own reading")
                                           : QStringLiteral("In this reply by SAE J1979");
    shown_with_other = chosen() + QList<noted_row>{{words_row{heading}, {}}} + only_other();
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
    own += {own_row, remark_on(own_row)};
    standard += {row, remark_on(row)};
}

void second_reading::both_say(const QList<result_row>& rows) {
    for (const result_row& row : rows)
        they_agree(row, row);
}

void second_reading::they_differ(const result_row* own_row, const QString& own_said,
                                 const std::optional<result_row>& row, const QString& said, bool weighs) {
    ++changed;
    weighty |= weighs;
    if (own_row)
        own += {*own_row, QStringLiteral("%1: %2").arg(by_standard, said), weighs};
    if (row)
        standard += {*row, QStringLiteral("The program's own reading: %1").arg(own_said), weighs};
}

void second_reading::read(const answer& one) {
    // A value that did not come stands in its row; so does a VIN that another ECU has told.
    const value_row* told_value = value_in(one);
    const bool is_told =
        one.request.startsWith(QLatin1String("09")) && told_value && told_value->value != not_available;
    if (!is_value(one) && !is_told) {
        for (const QString& fault : faults_of(one))
            if (!told.contains(fault))
                told += fault;
    } else if (which == part::vehicle && !one.request.isEmpty() && one.rows.isEmpty()) {
        unanswered[one.ecu] += one.request.mid(2);
    }
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

bool second_reading::is_value(const answer& one) const {
    constexpr int map_of_pids = 0x20;
    switch (which) {
    case part::extras: return true;
    case part::vehicle: return !one.request.startsWith(QLatin1String("09"));
    case part::freeze:
        return one.request != freezing_code_request &&
               one.request.mid(2).toInt(nullptr, 16) % map_of_pids != 0;
    default: return false;
    }
}

void second_reading::read_codes(const answer& one) {
    const int service = one.request.toInt(nullptr, 16);
    const QList<ecu_codes> answers = read_trouble_codes(service, one.what_came.raw());
    if (answers.isEmpty())
        return both_say(one.rows);
    QList<result_row> rows;
    for (const ecu_codes& ecu : answers)
        for (const QString& code : ecu.codes)
            rows += code_row{code, ecu.ecu};
    if (rows.isEmpty() && !told.isEmpty())
        rows += not_read(told);
    else if (rows.isEmpty() && which == part::codes)
        rows += words_row{localised(QStringLiteral("NO_CODES"))};
    const int protocol = one.what_came.protocol();
    own = marked(one.rows, rows, protocol, QStringLiteral("not by SAE J1979"));
    standard = marked(rows, one.rows, protocol, QStringLiteral("not in the program's own reading"));
    only_own = codes_marked(own);
    only_standard = codes_marked(standard);
    weighty = std::any_of(own.begin(), own.end(), [](const noted_row& row) { return row.weighs; }) ||
              !only_standard.isEmpty();
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
                said, true);
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
    const QStringList codes = freezing_codes(one.what_came);
    const value_row* row = value_in(one);
    const QString shown = row ? row->value : QString();
    if (codes.contains(shown) || (shown.isEmpty() && codes.isEmpty()))
        return both_say(one.rows);
    const QString code = codes.value(0, QStringLiteral("no freeze frame is stored"));
    they_differ(one.rows.isEmpty() ? nullptr : &one.rows.first(), shown.isEmpty() ? nothing : shown,
                value_row{{},
                          QStringLiteral("Freezed by"),
                          code,
                          codes.isEmpty() ? QString() : look_upCode(code, results.P0_Codes)},
                code, true);
}

void second_reading::read_freeze_value(const answer& one) {
    const auto value = is_value(one) ? standard_value(one, toolies, reading_for(one)) : std::nullopt;
    if (!value || value->is_undefined)
        return both_say(one.rows);
    const value_row* row = value_in(one); // none in what is read from a stored log
    const QString pid = one.request.mid(2);
    const QString text = pid_value_text(*value);
    const value_row other{pid, row ? row->label.trimmed() : toolies.get_pid_name_with_pid(pid), text, {}};
    if (!row)
        they_differ(nullptr, nothing, other, text);
    else if (!says_the_same(row->value, *value))
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
        if (test.same) {
            they_agree(*row, *test.row);
            continue;
        }
        they_differ(row, test.own_said.isEmpty() ? nothing : test.own_said, test.row, test.said,
                    test.other_verdict);
        if (!row)
            only_standard += {*test.row, {}, test.other_verdict};
    }
}

QStringList second_reading::faults() const {
    QStringList all = told;
    for (auto ecu = unanswered.keyValueBegin(); ecu != unanswered.keyValueEnd(); ++ecu)
        all += QStringLiteral("%1 announces, but does not answer: %2")
                   .arg(ecu->first.isEmpty() ? QStringLiteral("the car") : ecu->first,
                        ecu->second.join(QStringLiteral(", ")));
    return all;
}

QString second_reading::fault_line() const {
    const QString all = faults().join(QStringLiteral("; "));
    return all.isEmpty() ? QString() : QStringLiteral("Not all of it was answered: %1").arg(all);
}

QString second_reading::line() const {
    if (!replies_read || (!differs() && !standard_shown))
        return {};
    if (!differs())
        return QStringLiteral("Read by SAE J1979. The program's own reading is the same");
    return is_codes() ? line_of_codes() : line_of_values();
}

QString second_reading::line_of_codes() const {
    const QString other = codes_in(standard_shown ? own : standard);
    if (standard_shown)
        return QStringLiteral("Read by SAE J1979. The program's own reading: %1")
            .arg(other.isEmpty() ? QStringLiteral("no codes") : other);
    if (!other.isEmpty())
        return QStringLiteral("By SAE J1979 this reply holds: %1").arg(other);
    return told.isEmpty() ? QStringLiteral("By SAE J1979 this reply holds no codes")
                          : QStringLiteral("By SAE J1979 this reply cannot be read");
}

QString second_reading::line_of_values() const {
    const QString values =
        changed == 1 ? QStringLiteral("one value differs") : QStringLiteral("%1 values differ").arg(changed);
    if (standard_shown)
        return QStringLiteral("Read by SAE J1979. In the program's own reading %1").arg(values);
    if (vin.isEmpty())
        return QStringLiteral("By SAE J1979, %1").arg(values);
    const QString holds = QStringLiteral("By SAE J1979 this reply holds: %1").arg(vin);
    if (changed == 1)
        return holds;
    const QString others = changed == 2 ? QStringLiteral("one more value differs")
                                        : QStringLiteral("%1 more values differ").arg(changed - 1);
    return QStringLiteral("%1, and %2").arg(holds, others);
}

} // namespace brivant
