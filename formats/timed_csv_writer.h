#pragma once

#include "formats/export_columns.h"
#include "formats/run_writer.h"

namespace brivant {

// Comma-separated values by RFC 4180, one row a sweep: its time, the values, the position, the offset of each
// sample, a mark, and an empty cell. A gap is an empty cell. A mark has a row of its own, with the time when
// it was made. What the first line holds: see timed_csv_head.h.
class timed_csv_writer : public run_writer {
public:
    explicit timed_csv_writer(QIODevice& out) : run_writer(out) {}

protected:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;

private:
    QList<export_column> columns;
};

} // namespace brivant
