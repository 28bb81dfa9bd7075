#include "diagnostics/second_codes.h"

#include "obd/standard_reading/codes_and_texts.h"

namespace brivant {

namespace {

// A code and who stores it, so that two lists can be compared.
QString identity(const code_row& row, int protocol) {
    return row.code + u'|' + ecu_identity(row.ecu, protocol);
}

} // namespace

QList<noted_row> marked(const QList<result_row>& rows, const QList<result_row>& others, int protocol,
                        const QString& note) {
    QStringList left;
    for (const code_row& row : rows_of<code_row>(others))
        left += identity(row, protocol);
    QList<noted_row> result;
    for (const result_row& row : rows) {
        const auto* code = std::get_if<code_row>(&row);
        const bool is_there = code ? left.removeOne(identity(*code, protocol)) : others.contains(row);
        result += {row, is_there ? QString() : note, !is_there};
    }
    return result;
}

QList<noted_row> codes_marked(const QList<noted_row>& rows) {
    QList<noted_row> codes;
    for (const noted_row& row : rows)
        if (row.weighs && std::holds_alternative<code_row>(row.row))
            codes += {row.row, {}, true};
    return codes;
}

QString codes_in(const QList<noted_row>& rows) {
    QStringList codes;
    for (const code_row& row : rows_of<code_row>(plain(rows)))
        codes += row.code;
    return codes.join(QStringLiteral(", "));
}

QStringList freezing_codes(const reply& frames) {
    constexpr int freeze_frame = 2, freezing_code = 0x02;
    constexpr qsizetype code_at = 3, code_end = 5;
    QStringList codes;
    for (const ecu_answer& ecu : answers_to(freeze_frame, frames.raw()))
        for (const QByteArray& data : ecu.messages) {
            if (data.size() < code_end || data.at(1) != freezing_code)
                continue;
            const auto byte = [&](qsizetype at) { return static_cast<unsigned char>(data.at(at)); };
            if (byte(code_at) != 0 || byte(code_at + 1) != 0)
                codes += trouble_code_name(byte(code_at), byte(code_at + 1));
        }
    return codes;
}

} // namespace brivant
