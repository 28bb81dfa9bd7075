#include "formats/timed_csv_writer.h"

#include "formats/export_text.h"
#include "formats/timed_csv_head.h"

namespace brivant {

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

} // namespace brivant
