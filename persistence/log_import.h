#pragma once

#include "base/text_resources.h"
#include "persistence/database.h"

#include <functional>

namespace brivant {

class sqlite_connection;
class timed_csv_reader;

// Takes a timed CSV, which log_export wrote of a run here or elsewhere, back as a log: whole or not at all.
class log_import {
public:
    // Both outlive it.
    log_import(database& store, const text_resources& texts) : db(store), lists(texts) {}

    // `go_on` is asked again and again, with how much of the file is read; where it says no, nothing is kept.
    bool take(const QString& path, int veh_id, const std::function<bool(int percent)>& go_on);

    int log_id() const { return id; }
    qint64 sweeps() const { return with_values; }
    // Values that no reply of their PID has: texts, PIDs that are not known. They are gaps in the log.
    qint64 values_left_out() const { return left_out; }
    // A sentence for the person, "" while nothing is wrong.
    const QString& problem() const { return what_is_wrong; }

private:
    bool take_rows(sqlite_connection& connection, timed_csv_reader& reader, int veh_id,
                   const std::function<bool()>& go_on);
    bool fail(const QString& sentence);

    database& db;
    const text_resources& lists;
    int id = -1;
    qint64 with_values = 0;
    qint64 left_out = 0;
    QString what_is_wrong;
};

} // namespace brivant
