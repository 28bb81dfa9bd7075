#include "persistence/log_export.h"

#include "base/anonymity.h"
#include "base/console_log.h"
#include "obd/number_text.h"
#include "persistence/export_names.h"
#include "persistence/log_files.h"
#include "persistence/stored_marks.h"
#include "persistence/vehicles.h"

#include <QFile>

namespace brivant {

namespace {

QString value_text(const std::optional<double>& value) {
    return value ? with_decimals(*value, 6) : QStringLiteral("nan");
}

// "2026-11-22_10_02_11_Log.csv" as that of another format; timed values are comma-separated, too.
QString file_name_of(const QString& plain, const run_format* format) {
    if (!format)
        return plain;
    const QLatin1String end(format->what == run_format::kind::timed_csv ? "_timed." : ".");
    return plain.chopped(4) + end + QLatin1String(format->suffix);
}

} // namespace

log_export::log_export(database& store, const text_resources& texts, export_settings its_settings)
    : db(store), lists(texts),
      settings(std::move(its_settings)), reading{settings.units, settings.by_standard} {}

log_export::~log_export() {
    stop();
}

bool log_export::begin(int log_id, bool as_txt) {
    stop();
    phase = stage::idle;
    id = log_id;
    written = 0;
    are_columns_told = false;
    what_is_wrong.clear();
    const bool can_be_changed = db.init_DB(); // only to be read, it is enough
    const auto found = log_with_id(db, log_id);
    if (!found)
        return fail(!can_be_changed ? db.problem()
                                    : QStringLiteral("There is no log with the number %1.").arg(log_id));
    announced = found->info.section(u' ', 0, 0).toLongLong();

    const auto its_vehicle = vehicle_with_id(db, found->veh_id);
    vehicle = its_vehicle ? its_vehicle->name : QString();
    run = std::make_unique<stored_run>(db, *found, lists, reading);
    if (can_be_changed)
        keep_export_number(db, *found);
    const QString name = file_name_of(numbered_export_file_name(db, *found, as_txt), settings.format);
    final_path = work_out_log_fname(settings.documents, name);
    // A file of that name goes from the application folder, not from this one, where it is replaced: on
    // purpose.
    if (QFile::exists(final_path))
        delete_a_log(settings.application_folder, name);
    file = std::make_unique<whole_file>(final_path);
    if (!file->begin())
        return fail(QStringLiteral("%1 cannot be written (%2). Check the rights of its folder.")
                        .arg(final_path, file->errorString()));
    phase = stage::finding_columns;
    return open_rows();
}

bool log_export::open_rows() {
    rows = std::make_unique<row_cursor>(db.path(), run->statement());
    return !rows->has_failed() || fail(QStringLiteral("The log cannot be read: %1.").arg(rows->reason()));
}

bool log_export::step(int lines) {
    switch (phase) {
    case stage::finding_columns: return find_columns(lines);
    case stage::writing: return write_lines(lines);
    default: return false;
    }
}

// A column whose first cells hold no reply gets its name from the first line that has one.
bool log_export::find_columns(int lines) {
    for (int i = 0; i < lines; ++i) {
        const auto row = rows->next();
        if (!row || are_columns_told) {
            if (rows->has_failed())
                return fail(QStringLiteral("The log cannot be read: %1.").arg(rows->reason()));
            phase = stage::writing;
            return open_rows() && begin_writing();
        }
        are_columns_told = run->tell_columns(*row);
    }
    return true;
}

bool log_export::begin_writing() {
    if (!settings.format)
        return write(header());
    const run_head head = run->head(vehicle);
    if (settings.format->what == run_format::kind::gpx && !head.has_positions)
        return fail(is_anonymous()
                        ? QStringLiteral("With anonymity on no position is given away: no track is written.")
                        : QStringLiteral("The run has no positions: there is no track to write."));
    writer = make_run_writer(settings.format->what, *file);
    bool is_well = writer->begin(head);
    for (const timed_mark& mark : marks_of_run(db, id))
        is_well = is_well && writer->mark(mark);
    return is_well || fail(writer->problem());
}

QString log_export::header() const {
    const QList<run_column> columns = run->head(vehicle).columns;
    if (columns.isEmpty())
        return {};
    QString text;
    for (const run_column& column : columns) {
        const QString heading = sampled_heading(column.pid, reading, lists);
        text += text.isEmpty() ? heading : u',' + heading;
    }
    return text + (settings.time_column ? QStringLiteral(",(Sample time)\n") : QStringLiteral("\n"));
}

QString log_export::line_of(const QStringList& row, const timed_sweep& sweep) const {
    QString text;
    for (const std::optional<double>& number : sweep.values) {
        const QString value = value_text(number);
        text += text.isEmpty() ? value : u',' + value;
    }
    if (settings.time_column)
        text += u',' + gmt_date_str_2_local_date_str(row.value(chunk_time_stamp));
    return text + u'\n';
}

bool log_export::write_lines(int lines) {
    QString slice;
    for (int i = 0; i < lines; ++i) {
        const auto row = rows->next();
        if (!row) {
            if (rows->has_failed())
                return fail(QStringLiteral("The log cannot be read: %1.").arg(rows->reason()));
            return write(slice) && (!writer || writer->end() || fail(writer->problem())) && finish();
        }
        const timed_sweep sweep = run->sweep_of(*row);
        if (!writer)
            slice += line_of(*row, sweep);
        else if (!writer->add(sweep))
            return fail(writer->problem());
        ++written;
    }
    return write(slice);
}

bool log_export::write(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return file->write(bytes) == bytes.size() || fail_to_write();
}

bool log_export::finish() {
    rows.reset();
    writer.reset();
    if (!file->commit()) // in one go, over the export of another time
        return fail_to_write();
    file.reset();
    phase = stage::done;
    return false;
}

void log_export::stop() {
    if (phase != stage::finding_columns && phase != stage::writing)
        return;
    rows.reset();
    writer.reset();
    file.reset();
    phase = stage::idle;
}

bool log_export::fail_to_write() {
    return fail(QStringLiteral("%1 cannot be written to its end (%2). Is the disk full?")
                    .arg(final_path, file->errorString()));
}

bool log_export::fail(const QString& sentence) {
    console_log(QStringLiteral("Fallo export_fromDB_2_CSV::%1").arg(sentence));
    what_is_wrong = sentence;
    rows.reset();
    writer.reset();
    file.reset();
    phase = stage::failed;
    return false;
}

} // namespace brivant
