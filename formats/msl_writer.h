#pragma once

#include "formats/export_columns.h"
#include "formats/run_writer.h"

namespace brivant {

// The text log that MegaLogViewer reads: title lines in quotes, a row of names that begins with "Time", a row
// of units, rows of numbers, all tab-separated, and between them the marks as lines of their own. A gap is
// "NaN": of readers that split at tabs some run empty cells together.
class msl_writer : public run_writer {
public:
    explicit msl_writer(QIODevice& out) : run_writer(out) {}

protected:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;

private:
    QList<export_column> columns;
    int marks = 0;
};

} // namespace brivant
