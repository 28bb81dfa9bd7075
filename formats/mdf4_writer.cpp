#include "formats/export_columns.h"
#include "formats/export_text.h"
#include "formats/mdf4_blocks.h"
#include "formats/run_writers.h"

#include <cmath>

namespace brivant {

namespace {

constexpr qint64 data_block_size = 64 * 1024;
constexpr qint64 header_place = 64;                    // behind the identification
constexpr qint64 header_size = 104;                    // of the HD block
constexpr int event_link_of_header = 4;                // the fifth
constexpr int data_link_of_group = 2;                  // of the DG block
constexpr qint64 count_in_group = mdf4_link_at(6) + 8; // of the records, behind the record id in the CG block

// Of a channel, as the standard counts them.
enum : quint8 { fixed_length = 0, master = 2, no_sync = 0, in_time = 1, float_little_endian = 4 };
constexpr quint32 has_invalidation_bit = 1 << 1;
// Of an event.
enum : quint8 { marker = 6, a_point = 0, by_a_person = 4 };
constexpr double nanosecond = 1e-9;

bool is_single(const export_column& column) {
    return column.what == export_column::kind::offset;
}

int size_of(const export_column& column) {
    return is_single(column) ? sizeof(float) : sizeof(double);
}

qint64 nanoseconds(double ms) {
    return std::llround(ms * 1e6);
}

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

private:
    void write_head() override;
    void write_sweep(const timed_sweep& sweep) override;
    void write_mark(const timed_mark& its_mark) override;
    void write_end() override;

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

qint64 mdf4_writer::append(const QByteArray& block) {
    const qint64 place = end;
    put(block);
    end += block.size();
    return place;
}

void mdf4_writer::link(qint64 place, qint64 target) {
    put_at(place, mdf4_fields().u64(quint64(target)).bytes());
}

// Without a column the master channel.
qint64 mdf4_writer::append_channel(const export_column* column, qint64 next, quint32 at, quint32 bit) {
    const bool has_pid = column && column->what == export_column::kind::value;
    const qint64 name = append(mdf4_text(column ? column->name : QStringLiteral("Time")));
    const qint64 unit = append(mdf4_text(column ? column->unit : QStringLiteral("s")));
    const qint64 comment =
        has_pid ? append(mdf4_comment("CNcomment", QStringLiteral("PID ") + head().columns[column->of].pid))
                : 0;
    mdf4_fields fields;
    fields.u8(column ? fixed_length : master).u8(column ? no_sync : in_time).u8(float_little_endian).u8(0);
    fields.u32(at).u32(column ? 8 * size_of(*column) : 64);
    fields.u32(column ? has_invalidation_bit : 0).u32(bit);
    fields.empty(4 + 6 * 8); // precision, attachments; the value's range and limits
    return append(mdf4_block("CN", {next, 0, name, 0, 0, 0, unit, comment}, fields.bytes()));
}

void mdf4_writer::write_head() {
    if (!is_seekable)
        return fail(QStringLiteral("An MDF file cannot be written to a pipe."));
    columns = export_columns(head());
    append(mdf4_identification(cycle_counters | length_of_last_data_block));
    append(QByteArray(header_size, '\0')); // written when its links are known

    const quint64 start = quint64(head().start_ms) * 1'000'000;
    const qint64 history_comment = append(mdf4_comment(
        "FHcomment", QStringLiteral("Recorded."),
        QStringLiteral("<tool_id>Brivant Lite</tool_id><tool_vendor>Brivant</tool_vendor><tool_version>%1"
                       "</tool_version>")
            .arg(xml_text(head().version))));
    const qint64 history =
        append(mdf4_block("FH", {0, history_comment}, mdf4_fields().u64(start).empty(8).bytes()));
    const qint64 about = append(mdf4_comment("HDcomment", about_run(head()).join(QStringLiteral("; "))));

    quint32 record_size = sizeof(double);
    for (const export_column& column : std::as_const(columns))
        record_size += size_of(column);
    qint64 channel = 0;
    quint32 at = record_size;
    for (qsizetype i = columns.size() - 1; i >= 0; --i) { // each links to the one behind it
        at -= size_of(columns[i]);
        channel = append_channel(&columns[i], channel, at, quint32(i));
    }
    channel = append_channel(nullptr, channel, 0, 0);
    mdf4_fields group_fields; // record id, records, flags, path separator, sizes of a record's two parts
    group_fields.u64(0).u64(0).u16(0).u16(0).empty(4).u32(record_size).u32(quint32(columns.size() + 7) / 8);
    const qint64 channels = append(mdf4_block("CG", {0, channel, 0, 0, 0, 0}, group_fields.bytes()));
    const qint64 group = append(mdf4_block("DG", {0, channels, 0, 0}, mdf4_fields().empty(8).bytes()));

    record_count_at = channels + count_in_group;
    next_list_at = group + mdf4_link_at(data_link_of_group);
    next_event_at = header_place + mdf4_link_at(event_link_of_header);
    mdf4_fields header; // the start as UTC, without offsets; the computer's clock; no start angle or distance
    header.u64(start).empty(8).empty(16);
    put_at(header_place, mdf4_block("HD", {group, history, 0, 0, 0, about}, header.bytes()));
}

void mdf4_writer::write_sweep(const timed_sweep& sweep) {
    if (data_block == 0)
        open_data_block();
    mdf4_fields record;
    record.f64(sweep.ms / 1000);
    QByteArray invalid((columns.size() + 7) / 8, '\0');
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const auto number = cell_of(sweep, columns[i]);
        if (!number)
            invalid[i / 8] = char(invalid[i / 8] | 1 << i % 8);
        if (is_single(columns[i]))
            record.f32(float(number.value_or(NAN)));
        else
            record.f64(number.value_or(NAN));
    }
    append(record.bytes() + invalid);
    ++records;
    if (end - data_block >= data_block_size)
        close_data_block();
}

void mdf4_writer::write_mark(const timed_mark& its_mark) {
    if (data_block != 0)
        close_data_block();
    const qint64 name = append(mdf4_text(its_mark.text));
    mdf4_fields fields;
    fields.u8(marker).u8(in_time).u8(a_point).u8(by_a_person).empty(4); // flags, reserved
    fields.empty(4 + 2 + 2); // of the whole file, without attachments, by the first writer
    fields.u64(quint64(nanoseconds(its_mark.ms))).f64(nanosecond);
    const qint64 event = append(mdf4_block("EV", {0, 0, 0, name, 0}, fields.bytes()));
    link(next_event_at, event);
    next_event_at = event + mdf4_link_at(0);
}

void mdf4_writer::open_data_block() {
    mdf4_fields fields; // no equal lengths, one block, and where it begins among all records
    fields.empty(4).u32(1).u64(quint64(bytes_before));
    const qint64 size = mdf4_link_at(2) + fields.bytes().size();
    const qint64 list = end;
    data_block = list + size;
    append(mdf4_block("DL", {0, data_block}, fields.bytes()) + mdf4_block("DT", {}, {}));
    link(next_list_at, list);
    next_list_at = list + mdf4_link_at(0);
}

void mdf4_writer::close_data_block() {
    const qint64 length = end - data_block;
    link(data_block + mdf4_length_at, length);
    append(mdf4_padding(length));
    bytes_before += length - mdf4_head_size;
    data_block = 0;
}

void mdf4_writer::write_end() {
    if (data_block != 0)
        close_data_block();
    put_at(record_count_at, mdf4_fields().u64(records).bytes());
    put_at(0, mdf4_identification(0));
}

} // namespace

std::unique_ptr<run_writer> make_mdf4_writer(QIODevice& out) {
    return std::make_unique<mdf4_writer>(out);
}

} // namespace brivant
