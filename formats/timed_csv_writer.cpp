#include "formats/export_columns.h"
#include "formats/export_text.h"
#include "formats/run_writers.h"
#include "formats/timed_csv_head.h"

namespace brivant {

namespace {

// Comma-separated values by RFC 4180, one row a sweep: its time, the values, the position, the offset of each
// sample, a mark, and an empty cell. A gap is an empty cell. A mark has a row of its own, with the time when
// it was made. What the first line holds: see timed_csv_head.h.
class timed_csv_writer : public run_writer {
public:
    explicit timed_csv_writer(QIODevice& out) : run_writer(out) {}

private:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;

    QList<export_column> columns;
};

void timed_csv_writer::write_head() {
    columns = export_columns(head());
    QStringList names = timed_csv_names(head());
    for (QString& name : names)
        name = csv_cell(name);
    put((names.join(u',') + QStringLiteral("\r\n")).toUtf8());
}

void timed_csv_writer::write_sweep(const timed_sweep& sweep) {
    QByteArray line = seconds_text(sweep.ms);
    for (const export_column& column : columns) {
        line += ',';
        if (const auto number = cell_of(sweep, column))
            line += number_text(*number);
    }
    put(line + ",,\r\n");
}

void timed_csv_writer::write_mark(const timed_mark& its_mark) {
    put(seconds_text(its_mark.ms) + QByteArray(columns.size() + 1, ',') + csv_cell(its_mark.text).toUtf8() +
        ",\r\n");
}

} // namespace

std::unique_ptr<run_writer> make_timed_csv_writer(QIODevice& out) {
    return std::make_unique<timed_csv_writer>(out);
}

} // namespace brivant
