#pragma once

#include "formats/export_columns.h"
#include "formats/run_writer.h"

namespace brivant {

// ASAM MDF 4.10, sorted and not compressed: the sweeps are sampled by one loop, so there is one data group
// with one channel group, whose records are the sweep's time (the master channel), the numbers of
// export_columns.h (offsets as single, the others as double precision) and an invalidation bit a number, set
// at gaps, where the number is NaN. Marks are events.
//
// Records go to the file as they come, into data blocks of bounded size; each has a list block of its own,
// which the one before links to as soon as it stands, so that the links are right at every moment. Only the
// length of the last data block and the number of records are unknown until the end; a file that lacks them
// says so in its first block, and is read to its last whole record.
class mdf4_writer : public run_writer {
public:
    explicit mdf4_writer(QIODevice& out) : run_writer(out), is_seekable(!out.isSequential()) {}

protected:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;
    void write_end() override;

private:
    qint64 append(const QByteArray& block);
    qint64 append_channel(const export_column* column, qint64 next, quint32 at, quint32 bit);
    void link(qint64 place, qint64 target);
    void open_data_block();
    void close_data_block();

    const bool is_seekable;
    QList<export_column> columns;
    qint64 end = 0;           // of the file
    qint64 next_list_at = 0;  // where the link to the next list block stands
    qint64 next_event_at = 0; // and to the next event
    qint64 record_count_at = 0;
    quint64 records = 0;
    qint64 bytes_before = 0; // of records, in the data blocks that are closed
    qint64 data_block = 0;   // the open one, 0 while none is
};

} // namespace brivant
