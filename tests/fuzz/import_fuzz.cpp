// Any bytes as a file to import: what is read from it is bounded, every format can hold it, and as timed CSV
// it is read again as the same run.

#include "formats/drive_figures.h"
#include "formats/run_writer.h"
#include "formats/timed_csv_reader.h"
#include "tests/fuzz/must_hold.h"

#include <QBuffer>
#include <cstdint>

namespace brivant {

namespace {

struct read_run {
    run_head head;
    QList<timed_csv_reader::item> items;
    bool has_head = false;
};

read_run read(QByteArray bytes) {
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    timed_csv_reader reader(file);
    read_run run;
    run.has_head = reader.read_head();
    must_hold(run.has_head || !reader.problem().isEmpty(), "what is no such file is told");
    must_hold(reader.problem().size() < 400, "what is wrong is a sentence");
    run.head = reader.head();
    while (run.has_head) {
        auto item = reader.next();
        if (!item)
            break;
        run.items += std::move(*item);
    }
    return run;
}

QByteArray written(run_format::kind what, const read_run& run) {
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    const auto writer = make_run_writer(what, file);
    bool is_well = writer->begin(run.head);
    for (const auto& item : run.items) {
        if (const auto* sweep = std::get_if<timed_sweep>(&item))
            is_well = writer->add(*sweep) && is_well;
        else
            is_well = writer->mark(std::get<timed_mark>(item)) && is_well;
    }
    must_hold(writer->end() && is_well, "what was read can be written");
    return file.data();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const read_run run = read(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (!run.has_head)
        return 0;
    drive_figures figures(run.head);
    for (const auto& item : run.items)
        if (const auto* sweep = std::get_if<timed_sweep>(&item)) {
            must_hold(qsizetype(sweep->values.size()) == run.head.columns.size(),
                      "a sweep has a value a column");
            figures.add(*sweep);
        }
    must_hold(figures.columns().size() == run.head.columns.size(), "each column has figures");
    for (const run_format& format : run_formats())
        written(format.what, run);
    const QByteArray again = written(run_format::kind::timed_csv, run);
    must_hold(written(run_format::kind::timed_csv, read(again)) == again, "it is read again as the same run");
    return 0;
}

} // namespace brivant
