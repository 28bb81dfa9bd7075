#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace brivant {

// The blocks of ASAM MDF 4.10: a head of four characters, four empty bytes, the length and the number of
// links, then the links (places in the file), then the fields; little-endian, each beginning at a multiple
// of 8.

// Fields one behind the other.
class mdf4_fields {
public:
    mdf4_fields& u8(quint8 value) { return integer(value); }
    mdf4_fields& u16(quint16 value) { return integer(value); }
    mdf4_fields& u32(quint32 value) { return integer(value); }
    mdf4_fields& u64(quint64 value) { return integer(value); }
    mdf4_fields& f32(float value);
    mdf4_fields& f64(double value);
    mdf4_fields& empty(int count);

    const QByteArray& bytes() const { return its_bytes; }

private:
    template <typename T>
    mdf4_fields& integer(T value);

    QByteArray its_bytes;
};

constexpr qint64 mdf4_head_size = 24;
constexpr qint64 mdf4_length_at = 8; // in the head
// Where a link stands in its block.
constexpr qint64 mdf4_link_at(int number) {
    return mdf4_head_size + 8 * number;
}

// Padded to a multiple of 8, which its length does not count.
QByteArray mdf4_block(const char* id, const QList<qint64>& links, const QByteArray& fields);
QByteArray mdf4_text(const QString& text);
// <root><TX>text</TX>more</root>; `more` is XML.
QByteArray mdf4_comment(const char* root, const QString& text, const QString& more = {});
QByteArray mdf4_padding(qint64 size);

// "MDF" or, before it is finished, "UnFinMF" with what a reader has to mend.
enum mdf4_unfinished : quint16 { cycle_counters = 1 << 0, length_of_last_data_block = 1 << 2 };
QByteArray mdf4_identification(quint16 unfinished);

} // namespace brivant
