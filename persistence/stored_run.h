#pragma once

#include "base/text_resources.h"
#include "formats/run_values.h"
#include "obd/readings/sampled_value.h"
#include "persistence/stored_logs.h"

namespace brivant {

// A stored sampling run as the log formats take it, of the rows that row_cursor reads. A run of an older
// program has only the seconds at which its lines were stored.
class stored_run {
public:
    stored_run(database& store, const log_header& its_log, const text_resources& texts,
               const sample_reading& its_reading);

    // The rows of the run, in the order in which they were stored.
    QString statement() const;
    // Looks at a row for columns that none before it has told. True when all are known.
    bool tell_columns(const QStringList& row);
    // Once the columns are told.
    run_head head(const QString& vehicle) const;
    timed_sweep sweep_of(const QStringList& row) const;

private:
    std::vector<double> offsets_of(const QStringList& items, const QList<double>& stored) const;

    const log_header log;
    const text_resources& lists;
    const sample_reading reading;
    const std::optional<qint64> start; // nothing: the run has no moments
    const bool tells_positions;        // to others it tells none while anonymity is on
    QStringList pids;                  // a column each; "" until a row tells it
};

} // namespace brivant
