#include "diagnostics/code_list.h"

#include "base/string_table.h"

#include <QSet>
#include <algorithm>

namespace brivant {

namespace {

listed_code* same_code(QList<listed_code>& rows, const code_row& code) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const listed_code& row) {
        return row.code == code.code && (row.ecu == code.ecu || row.ecu.isEmpty() || code.ecu.isEmpty());
    });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

QString listed_code::kinds() const {
    QStringList all;
    for (const auto& [is_so, word] : {std::pair(confirmed, "confirmed"),
                                      {pending, "pending"},
                                      {permanent, "permanent"},
                                      {froze_the_frame, "froze the frame"}})
        if (is_so)
            all += QString::fromLatin1(word);
    return all.join(QStringLiteral(", "));
}

code_list::code_list(const QList<noted_row>& confirmed, const QList<noted_row>& pending,
                     const permanent_codes& permanent, const QString& freezing_code) {
    add(confirmed, &listed_code::confirmed);
    add(pending, &listed_code::pending);
    add(permanent.rows, &listed_code::permanent);
    if (!only_other.isEmpty()) {
        rows += listed_code{.sentence = heading};
        rows += only_other;
    }
    for (listed_code& row : rows)
        row.froze_the_frame = !row.is_sentence() && row.code == freezing_code;
    for (const QString& sentence : sentences)
        rows += listed_code{.sentence = sentence};
}

void code_list::add(const QList<noted_row>& read, bool listed_code::*kind) {
    const bool stays_a_row = kind == &listed_code::confirmed;
    bool is_others = false;
    for (const noted_row& one : read) {
        if (const auto* words = std::get_if<words_row>(&one.row)) {
            if (words->text == localised(QStringLiteral("NO_CODES")))
                continue;
            is_others = &one != &read.last(); // codes follow a heading
            if (is_others)
                heading = words->text;
            else {
                sentences += words->text;
                if (stays_a_row)
                    confirmed_doubt = words->text;
            }
            continue;
        }
        const auto* code = std::get_if<code_row>(&one.row);
        if (!code)
            continue;
        listed_code* row = stays_a_row ? nullptr : same_code(rows, *code);
        if (!row && !stays_a_row)
            row = same_code(only_other, *code);
        if (!row) {
            QList<listed_code>& list = is_others ? only_other : rows;
            list += listed_code{.code = code->code, .ecu = code->ecu, .note = one.note};
            row = &list.last();
        }
        row->*kind = true;
    }
}

qsizetype code_list::count(bool listed_code::*kind) const {
    QSet<QString> codes;
    for (const listed_code& row : rows) {
        if (row.sentence == heading && row.is_sentence())
            break;
        if (row.*kind)
            codes += row.code + row.ecu;
    }
    return codes.size();
}

QString freezing_code(const QList<noted_row>& frame) {
    for (const value_row& row : rows_of<value_row>(plain(frame)))
        if (row.label == QLatin1String("Freezed by"))
            return row.value;
    return {};
}

} // namespace brivant
