#include "persistence/stored_run.h"

#include "obd/pid_catalogue.h"
#include "obd/readings/sweep_values.h"
#include "persistence/log_files.h"
#include "persistence/stored_moments.h"
#include "persistence/stored_positions.h"

#include <cmath>

namespace brivant {

stored_run::stored_run(database& store, const log_header& its_log, const text_resources& texts,
                       const sample_reading& its_reading)
    : log(its_log), lists(texts), reading(its_reading), start(start_of_run(store, its_log.id)),
      tells_positions(start && shows_positions(store, its_log.id)) {}

QString stored_run::statement() const {
    if (tells_positions)
        return placed_chunks_statement(log.id);
    return start ? timed_chunks_statement(log.id) : chunks_statement(log.id);
}

bool stored_run::tell_columns(const QStringList& row) {
    return brivant::tell_columns(pids, items_of_chunk(row));
}

run_head stored_run::head(const QString& vehicle) const {
    constexpr qint64 ms_a_second = 1000;
    const qint64 stored = seconds_of_time_stamp(log.time_stamp.toUtf8());
    run_head head{.start_ms = start.value_or(std::max<qint64>(0, stored) * ms_a_second),
                  .vehicle = vehicle,
                  .by_standard = reading.by_standard,
                  .units = reading.units,
                  .version = QStringLiteral(BV_VERSION),
                  .columns = {},
                  .has_offsets = start.has_value(),
                  .has_positions = tells_positions};
    for (const QString& pid : pids) {
        const QString unit = sampled_unit(pid, reading);
        head.columns += {pid, get_pid_name_with_pid(pid, lists, reading.sensors),
                         unit == not_available ? QString() : unit};
    }
    return head;
}

timed_sweep stored_run::sweep_of(const QStringList& row) const {
    const QStringList items = items_of_chunk(row);
    timed_sweep sweep;
    for (const double number : sampled_numbers(in_columns(pids, items), reading, lists))
        sweep.values.push_back(std::isnan(number) ? std::nullopt : std::optional(number));
    if (!start) {
        const qint64 stored = seconds_of_time_stamp(row.value(chunk_time_stamp).toUtf8());
        sweep.ms = static_cast<double>(
            std::max<qint64>(0, stored - seconds_of_time_stamp(log.time_stamp.toUtf8())) * 1000);
    } else if (const auto when = moment_in(row.value(chunk_ms), row.value(chunk_offsets))) {
        sweep.ms = when->ms;
        sweep.offsets_ms = offsets_of(items, when->offsets);
        if (tells_positions)
            sweep.position = position_in(row);
    }
    return sweep;
}

// An item stands in the column of its PID, and its offset with it.
std::vector<double> stored_run::offsets_of(const QStringList& items, const QList<double>& stored) const {
    std::vector<double> offsets(static_cast<size_t>(pids.size()), qQNaN());
    double latest = 0;
    for (qsizetype place = 0; place < items.size() && place < stored.size(); ++place) {
        const QString pid = sampled_pid(items.at(place));
        const bool is_in_place = place < pids.size() && pids.at(place) == pid;
        const qsizetype column = is_in_place ? place : pids.indexOf(pid);
        if (std::isnan(stored.at(place)))
            continue;
        latest = std::max(latest, stored.at(place));
        if (column >= 0)
            offsets[static_cast<size_t>(column)] = stored.at(place);
    }
    // What is worked out of the others is true when the last of them is.
    for (qsizetype place = 0; place < items.size() && place < pids.size(); ++place) {
        if (!sampled_pid(items.at(place)).isEmpty() && std::isnan(offsets[static_cast<size_t>(place)]))
            offsets[static_cast<size_t>(place)] = latest;
    }
    return offsets;
}

} // namespace brivant
