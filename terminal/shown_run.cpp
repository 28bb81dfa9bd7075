#include "terminal/shown_run.h"

#include "base/string_table.h"
#include "obd/pid_catalogue.h"
#include "obd/readings/sweep_values.h"
#include "persistence/log_files.h"
#include "persistence/stored_marks.h"
#include "persistence/stored_moments.h"
#include "persistence/stored_positions.h"
#include "terminal/output.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace brivant {

namespace {

constexpr int digits = 10;

sample_reading by_standard(sample_reading reading) {
    reading.by_standard = true;
    return reading;
}

QJsonArray columns_as_json(const QStringList& pids, const sample_reading& own, const text_resources& lists) {
    QJsonArray columns;
    for (const QString& pid : pids)
        columns += QJsonObject{
            {"pid", pid},
            {"name", pid.isEmpty() ? not_available : get_pid_name_with_pid(pid, lists, own.sensors)},
            {"unit", sampled_unit(pid, own).trimmed()},
            {"standard_unit", sampled_unit(pid, by_standard(own))}};
    return columns;
}

QJsonArray numbers_as_json(const QStringList& items, const sample_reading& reading,
                           const text_resources& lists) {
    QJsonArray numbers;
    for (const double number : sampled_numbers(items, reading, lists))
        numbers += std::isfinite(number) ? QJsonValue(number) : QJsonValue();
    return numbers;
}

// "values" are the program's own; "standard" stands beside them where SAE J1979 says otherwise.
QJsonObject sample_as_json(const QStringList& items, const sample_reading& own, const text_resources& lists) {
    QJsonObject sample{{"values", numbers_as_json(items, own, lists)}};
    if (std::any_of(items.begin(), items.end(),
                    [&](const QString& item) { return readings_differ_in(items, item, own, lists); }))
        sample.insert("standard", numbers_as_json(items, by_standard(own), lists));
    return sample;
}

// When the values were true: "ms" since the run's start, and of each item from there.
void add_moment(QJsonObject& sample, const QStringList& row) {
    const auto when = moment_in(row.value(chunk_ms), row.value(chunk_offsets));
    if (!when)
        return;
    sample.insert("ms", when->ms);
    QJsonArray offsets;
    for (const double offset : when->offsets)
        offsets += std::isnan(offset) ? QJsonValue() : QJsonValue(offset);
    sample.insert("offsets", offsets);
}

QJsonObject as_json(const geo_position& where) {
    const auto known = [](const std::optional<double>& number) {
        return number ? QJsonValue(*number) : QJsonValue();
    };
    return {{"offset", where.offset_ms},       {"latitude", where.latitude},
            {"longitude", where.longitude},    {"altitude_m", known(where.altitude)},
            {"speed_m_s", known(where.speed)}, {"track_deg", known(where.track)},
            {"error_m", known(where.error)}};
}

QJsonArray marks_as_json(const QList<timed_mark>& marks) {
    QJsonArray all;
    for (const timed_mark& mark : marks)
        all += QJsonObject{{"ms", mark.ms}, {"text", mark.text}};
    return all;
}

// The PIDs of a run's columns.
QStringList columns_of(database& db, int log_id) {
    QStringList pids;
    each_chunk(db, log_id, [&](const QStringList& row) { return !tell_columns(pids, items_of_chunk(row)); });
    return pids;
}

} // namespace

bool each_chunk(database& db, int log_id, const std::function<bool(const QStringList& row)>& take) {
    return db.for_each_row(chunks_statement(log_id),
                           [&take](const QStringList& row) { return take(row) && std::ferror(stdout) == 0; });
}

bool print_run(mac_toolies& toolies, const log_header& log) {
    database& db = toolies.store();
    QString head = QStringLiteral("Time");
    const QStringList pids = columns_of(db, log.id);
    for (const QString& pid : pids)
        head += u',' + sampled_heading(pid, toolies.shown_reading(), toolies.lists());
    print(head + u'\n');
    const bool read = each_chunk(db, log.id, [&](const QStringList& row) {
        QString line = gmt_date_str_2_local_date_str(row.value(chunk_time_stamp));
        const QStringList items = in_columns(pids, items_of_chunk(row));
        for (const double number : sampled_numbers(items, toolies.shown_reading(), toolies.lists()))
            line += u',' + (std::isfinite(number) ? QString::number(number, 'g', digits) : QString());
        print(line + u'\n');
        return true;
    });
    const QList<timed_mark> marks = marks_of_run(db, log.id);
    for (const timed_mark& mark : marks)
        print(QStringLiteral("%1Mark at %2 s: %3\n")
                  .arg(&mark == &marks.first() ? QStringLiteral("\n") : QString())
                  .arg(mark.ms / 1000, 0, 'f', 3)
                  .arg(mark.text));
    return read;
}

bool print_run_as_json(mac_toolies& toolies, const log_header& log) {
    database& db = toolies.store();
    const sample_reading own{toolies.units(), false};
    const auto start = start_of_run(db, log.id);
    if (start)
        print(",\"start_utc_ms\":" + QByteArray::number(*start));
    print(",\"columns\":" + compact(columns_as_json(columns_of(db, log.id), own, toolies.lists())) +
          ",\"marks\":" + compact(marks_as_json(marks_of_run(db, log.id))) + ",\"samples\":[");
    bool is_first = true;
    const bool has_positions = start && shows_positions(db, log.id);
    const QString rows = has_positions ? placed_chunks_statement(log.id)
                         : start       ? timed_chunks_statement(log.id)
                                       : chunks_statement(log.id);
    const bool read = db.for_each_row(rows, [&](const QStringList& row) {
        QJsonObject sample = sample_as_json(items_of_chunk(row), own, toolies.lists());
        add_moment(sample, row);
        if (const auto where = has_positions ? position_in(row) : std::nullopt)
            sample.insert("position", as_json(*where));
        print((is_first ? "" : ",") + compact(sample));
        is_first = false;
        return std::ferror(stdout) == 0;
    });
    print(QStringLiteral("]"));
    return read;
}

} // namespace brivant
