#include "persistence/stored_replies.h"

#include "base/string_table.h"
#include "persistence/database_schema.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int unknown_protocol = -1;
constexpr int last_protocol = 0xF; // "AT DPN" tells one digit

bool is_sound(const stored_reply& one) {
    return one.request.size() <= stored_reply::longest_request &&
           one.what_came.text.size() <= stored_reply::longest_reply &&
           one.what_came.protocol >= unknown_protocol && one.what_came.protocol <= last_protocol &&
           one.milliseconds >= 0;
}

std::optional<stored_reply> reply_in(const QStringList& row) {
    bool numbers[3];
    const int protocol = row.at(3).toInt(&numbers[0]);
    const int headers = row.at(4).toInt(&numbers[1]);
    const stored_reply one{row.at(1), {row.at(2), protocol, headers == 1}, row.at(5).toLongLong(&numbers[2])};
    const bool is_typed = std::all_of(std::begin(numbers), std::end(numbers), [](bool ok) { return ok; });
    return is_typed && (headers == 0 || headers == 1) && is_sound(one) ? std::optional(one) : std::nullopt;
}

bool insert(sqlite_connection& connection, int log_id, int sequence, const stored_reply& one) {
    sqlite_statement statement(
        connection, QStringLiteral("INSERT INTO BV_REPLIES (LOG_ID, SEQUENCE, REQUEST, REPLY, PROTOCOL, "
                                   "HEADERS_SHOWN, MILLISECONDS) VALUES (?, ?, ?, ?, ?, ?, ?)"));
    return statement.is_prepared() && statement.bind(1, log_id) && statement.bind(2, sequence) &&
           statement.bind(3, one.request) && statement.bind(4, one.what_came.text) &&
           statement.bind(5, one.what_came.protocol) &&
           statement.bind(6, one.what_came.headers_shown ? 1 : 0) && statement.bind(7, one.milliseconds) &&
           statement.step() == sqlite_statement::stepped::done;
}

} // namespace

bool store_replies(database& db, int log_id, const QList<stored_reply>& replies) {
    if (replies.size() > stored_reply::most_of_a_log ||
        !std::all_of(replies.begin(), replies.end(), is_sound))
        return false;
    return db.change([&](sqlite_connection& connection) {
        bool stored = add_own_schema(connection);
        for (int i = 0; stored && i < replies.size(); ++i)
            stored = insert(connection, log_id, i, replies.at(i));
        return stored;
    });
}

std::optional<QList<stored_reply>> replies_of(database& db, int log_id) {
    bool has_table = false;
    const auto table = QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name='BV_REPLIES'");
    if (!db.for_each_row(table, [&](const QStringList&) {
            has_table = true;
            return false;
        }))
        return std::nullopt;
    QList<stored_reply> replies;
    if (!has_table)
        return replies;
    bool are_sound = true;
    const auto rows = QStringLiteral(
        "SELECT SEQUENCE, REQUEST, REPLY, PROTOCOL, HEADERS_SHOWN, MILLISECONDS FROM BV_REPLIES "
        "WHERE LOG_ID=%d ORDER BY SEQUENCE");
    const bool read = db.for_each_row(fill(rows, {QString::number(log_id)}), [&](const QStringList& row) {
        const auto one = reply_in(row);
        are_sound = one && row.at(0) == QString::number(replies.size()) &&
                    replies.size() < stored_reply::most_of_a_log;
        if (are_sound)
            replies += *one;
        return are_sound;
    });
    return read && are_sound ? std::optional(replies) : std::nullopt;
}

} // namespace brivant
