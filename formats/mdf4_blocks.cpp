#include "formats/mdf4_blocks.h"

#include "formats/export_text.h"

#include <QtEndian>
#include <bit>

namespace brivant {

template <typename T>
mdf4_fields& mdf4_fields::integer(T value) {
    const T little = qToLittleEndian(value);
    its_bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
    return *this;
}

template mdf4_fields& mdf4_fields::integer(quint8);
template mdf4_fields& mdf4_fields::integer(quint16);
template mdf4_fields& mdf4_fields::integer(quint32);
template mdf4_fields& mdf4_fields::integer(quint64);

mdf4_fields& mdf4_fields::f32(float value) {
    return u32(std::bit_cast<quint32>(value));
}

mdf4_fields& mdf4_fields::f64(double value) {
    return u64(std::bit_cast<quint64>(value));
}

mdf4_fields& mdf4_fields::empty(int count) {
    its_bytes.append(count, '\0');
    return *this;
}

QByteArray mdf4_padding(qint64 size) {
    return QByteArray((8 - size % 8) % 8, '\0');
}

QByteArray mdf4_block(const char* id, const QList<qint64>& links, const QByteArray& fields) {
    const qint64 length = mdf4_link_at(int(links.size())) + fields.size();
    mdf4_fields head;
    head.empty(4).u64(quint64(length)).u64(quint64(links.size()));
    for (const qint64 link : links)
        head.u64(quint64(link));
    return "##" + QByteArray(id) + head.bytes() + fields + mdf4_padding(length);
}

QByteArray mdf4_text(const QString& text) {
    return mdf4_block("TX", {}, text.toUtf8() + '\0');
}

QByteArray mdf4_comment(const char* root, const QString& text, const QString& more) {
    const QString xml = QStringLiteral("<%1 xmlns=\"http://www.asam.net/mdf/v4\"><TX>%2</TX>%3</%1>")
                            .arg(QLatin1String(root), xml_text(text), more);
    return mdf4_block("MD", {}, xml.toUtf8() + '\0');
}

QByteArray mdf4_identification(quint16 unfinished) {
    mdf4_fields fields;
    fields.empty(4).u16(410).empty(30).u16(unfinished).u16(0);
    return (unfinished ? "UnFinMF " : "MDF     ") + QByteArrayLiteral("4.10    Brivant ") + fields.bytes();
}

} // namespace brivant
