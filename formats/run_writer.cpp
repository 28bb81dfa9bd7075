#include "formats/run_writer.h"

#include "formats/run_writers.h"

#include <QFileDevice>
#include <algorithm>
#include <limits>

namespace brivant {

const QList<run_format>& run_formats() {
    using kind = run_format::kind;
    static const QList<run_format> formats{
        {kind::timed_csv, "timed", "csv", "comma-separated values with the time of each sweep"},
        {kind::msl, "msl", "msl", "tab-separated log for MegaLogViewer"},
        {kind::mdf4, "mdf4", "mf4", "measurement data, ASAM MDF 4.10"},
        {kind::gpx, "gpx", "gpx", "track of the positions, GPX 1.1"},
    };
    return formats;
}

const run_format* run_format_of(const QString& word) {
    const auto& all = run_formats();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const run_format& one) { return word == QLatin1String(one.word); });
    return found == all.end() ? nullptr : &*found;
}

bool run_writer::begin(const run_head& its_head) {
    run = its_head;
    write_head();
    return !has_failed();
}

bool run_writer::add(const timed_sweep& sweep) {
    write_marks_before(sweep.ms);
    write_sweep(sweep);
    return !has_failed();
}

bool run_writer::mark(const timed_mark& its_mark) {
    const QString line = its_mark.text.simplified();
    const timed_mark of_one_line{its_mark.ms, line.isEmpty() ? QStringLiteral("Mark") : line};
    const auto behind = std::upper_bound(waiting.begin(), waiting.end(), its_mark.ms,
                                         [](double ms, const timed_mark& other) { return ms < other.ms; });
    waiting.insert(behind, of_one_line);
    return !has_failed();
}

bool run_writer::end() {
    write_marks_before(std::numeric_limits<double>::infinity());
    write_end();
    if (auto* file = qobject_cast<QFileDevice*>(&device); file && !has_failed() && !file->flush())
        fail_to_write();
    return !has_failed();
}

void run_writer::write_marks_before(double ms) {
    while (!waiting.isEmpty() && waiting.first().ms < ms)
        write_mark(waiting.takeFirst());
}

void run_writer::put(const QByteArray& bytes) {
    if (!has_failed() && device.write(bytes) != bytes.size())
        fail_to_write();
}

void run_writer::put_at(qint64 place, const QByteArray& bytes) {
    if (has_failed())
        return;
    const qint64 end = device.pos();
    if (device.seek(place))
        put(bytes);
    if (!has_failed() && !device.seek(end))
        fail(
            QStringLiteral("The file cannot be written at an earlier place (%1).").arg(device.errorString()));
}

void run_writer::fail_to_write() {
    fail(QStringLiteral("The file cannot be written to its end (%1).").arg(device.errorString()));
}

void run_writer::fail(const QString& sentence) {
    if (!has_failed())
        what_is_wrong = sentence;
}

std::unique_ptr<run_writer> make_run_writer(run_format::kind what, QIODevice& out) {
    switch (what) {
    case run_format::kind::timed_csv: return make_timed_csv_writer(out);
    case run_format::kind::msl: return make_msl_writer(out);
    case run_format::kind::mdf4: return make_mdf4_writer(out);
    default: return make_gpx_writer(out);
    }
}

} // namespace brivant
