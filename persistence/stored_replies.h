#pragma once

#include "base/shared_types.h"
#include "persistence/database.h"

#include <optional>

namespace brivant {

// What was asked in an operation whose result is stored, and what came: so that a stored result can be read
// in either reading.
struct stored_reply {
    QString request; // as sent, without its line end
    raw_reply what_came;
    qint64 milliseconds = 0; // since the start of the operation

    static constexpr qsizetype longest_request = 1024;
    static constexpr qsizetype longest_reply = 16 * 1024;
    static constexpr qsizetype most_of_a_log = 4096;
};

// Stores the replies of a log in their order, all or none; once for a log. False when they are not stored:
// too many, too long, or database::problem().
bool store_replies(database& db, int log_id, const QList<stored_reply>& replies);

// The replies of a log in their order; empty for a log of an older version, which has none. Nothing when they
// cannot be read, or hold what this program never stores: the file may come from anywhere.
std::optional<QList<stored_reply>> replies_of(database& db, int log_id);

} // namespace brivant
