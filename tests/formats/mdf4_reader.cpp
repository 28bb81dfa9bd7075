#include "tests/formats/mdf4_reader.h"

#include <cstring>

namespace {

struct block {
    qint64 place = 0;
    QList<qint64> links;
    qint64 fields = 0; // where they begin
    qint64 length = 0;
};

class reader {
public:
    explicit reader(const QByteArray& its_bytes) : bytes(its_bytes) {}

    mdf4_file read() {
        identification();
        const block header = at(64, "HD", 6, 32);
        file.start_ns = number<quint64>(header.fields);
        const block history = at(header.links.value(1), "FH", 2, 16);
        file.history = text(history.links.value(1));
        file.comment = text(header.links.value(5));
        group(header.links.value(0));
        for (qint64 place = header.links.value(4); place != 0 && is_well();)
            place = event(place);
        return file;
    }

private:
    bool is_well() const { return file.fault.isEmpty(); }
    void fault(const QString& what) {
        if (is_well())
            file.fault = what;
    }

    template <typename T>
    T number(qint64 place) {
        T value{};
        if (place < 0 || place + qint64(sizeof value) > bytes.size())
            fault(QString("nothing at %1").arg(place));
        else
            std::memcpy(&value, bytes.constData() + place, sizeof value); // this machine is little-endian
        return value;
    }

    // links and fields: how many, and how many bytes at least; -1 for any number.
    block at(qint64 place, const char* id, int links, qint64 fields) {
        block found{place, {}, 0, 0};
        if (place <= 0 || place % 8 != 0 || bytes.mid(place, 4) != "##" + QByteArray(id)) {
            fault(QString("no %1 block at %2").arg(id).arg(place));
            return found;
        }
        found.length = number<qint64>(place + 8);
        const auto count = number<quint64>(place + 16);
        if (number<quint32>(place + 4) != 0 || count > 1000 || (links >= 0 && count != quint64(links)))
            fault(QString("the %1 block at %2 has a wrong head").arg(id).arg(place));
        for (quint64 i = 0; i < count && is_well(); ++i)
            found.links += number<qint64>(place + 24 + 8 * qint64(i));
        found.fields = place + 24 + 8 * found.links.size();
        if (found.length < found.fields - place + fields || place + found.length > bytes.size())
            fault(QString("the %1 block at %2 has the length %3").arg(id).arg(place).arg(found.length));
        return found;
    }

    void identification() {
        const QByteArray id = bytes.left(8);
        file.is_finished = id == "MDF     ";
        file.to_mend = number<quint16>(60);
        if (!file.is_finished && id != "UnFinMF ")
            fault("not an MDF file");
        if (bytes.mid(8, 8) != "4.10    " || number<quint16>(28) != 410)
            fault("another version");
        if (file.is_finished != (file.to_mend == 0) || (file.to_mend & ~5) != 0)
            fault("wrong flags of what is unfinished");
    }

    QString text(qint64 place) {
        if (place == 0)
            return {};
        const block found = at(place, bytes.mid(place, 4) == "##MD" ? "MD" : "TX", 0, 1);
        const QByteArray whole = bytes.mid(found.fields, place + found.length - found.fields);
        if (!whole.endsWith('\0'))
            fault("a text without an end");
        return QString::fromUtf8(whole.constData());
    }

    void group(qint64 place) {
        const block data_group = at(place, "DG", 4, 8);
        const block group = at(data_group.links.value(1), "CG", 6, 32);
        if (!is_well())
            return;
        if (data_group.links[0] != 0 || group.links[0] != 0 || number<quint8>(data_group.fields) != 0)
            fault("more than one group");
        file.announced_records = number<quint64>(group.fields + 8);
        const auto data_bytes = number<quint32>(group.fields + 24);
        const auto invalidation_bytes = number<quint32>(group.fields + 28);
        for (qint64 channel = group.links[1]; channel != 0 && is_well();)
            channel = this->channel(channel, data_bytes);
        const QByteArray data = data_of(data_group.links[2]);
        const qint64 size = data_bytes + invalidation_bytes;
        if (size == 0 || (file.is_finished && data.size() != qint64(file.announced_records) * size))
            return fault(QString("%1 records of %2 bytes in %3")
                             .arg(file.announced_records)
                             .arg(size)
                             .arg(data.size()));
        for (qint64 start = 0; start + size <= data.size(); start += size)
            file.records += record(data.mid(start, size), data_bytes);
    }

    qint64 channel(qint64 place, quint32 data_bytes) {
        const block found = at(place, "CN", 8, 72);
        if (!is_well())
            return 0;
        mdf4_file::channel one;
        one.name = text(found.links[2]);
        one.unit = text(found.links[6]);
        one.comment = text(found.links[7]);
        one.type = number<quint8>(found.fields);
        one.sync = number<quint8>(found.fields + 1);
        one.data_type = number<quint8>(found.fields + 2);
        one.byte_offset = number<quint32>(found.fields + 4);
        one.bits = number<quint32>(found.fields + 8);
        one.flags = number<quint32>(found.fields + 12);
        one.invalidation_bit = number<quint32>(found.fields + 16);
        if (one.data_type != 4 || (one.bits != 64 && one.bits != 32) ||
            one.byte_offset + one.bits / 8 > data_bytes)
            fault("a channel outside its record");
        file.channels += one;
        return found.links[0];
    }

    QList<std::optional<double>> record(const QByteArray& bytes_of_it, quint32 data_bytes) {
        QList<std::optional<double>> numbers;
        for (const auto& one : file.channels) {
            double value = 0;
            float single = 0;
            if (one.bits == 64)
                std::memcpy(&value, bytes_of_it.constData() + one.byte_offset, 8);
            else
                std::memcpy(&single, bytes_of_it.constData() + one.byte_offset, 4);
            const quint32 bit = one.invalidation_bit;
            const bool is_invalid = (one.flags & 2) && (bytes_of_it[data_bytes + bit / 8] >> bit % 8 & 1);
            numbers += is_invalid ? std::nullopt : std::optional(one.bits == 64 ? value : double(single));
        }
        return numbers;
    }

    QByteArray data_of(qint64 list) {
        QByteArray data;
        while (list != 0 && is_well()) {
            const block found = at(list, "DL", 2, 16);
            if (!is_well())
                break;
            if (number<quint8>(found.fields) != 0 || number<quint32>(found.fields + 4) != 1 ||
                number<qint64>(found.fields + 8) != data.size())
                fault("a list that does not say where its data belong");
            const block part = at(found.links[1], "DT", 0, 0);
            const bool to_the_end = (file.to_mend & 4) && found.links[0] == 0 && part.length == 24;
            data += bytes.mid(part.fields, to_the_end ? -1 : part.length - 24);
            ++file.data_blocks;
            list = found.links[0];
        }
        return data;
    }

    qint64 event(qint64 place) {
        const block found = at(place, "EV", 5, 32);
        if (!is_well())
            return 0;
        file.events.append({text(found.links[3]), number<quint8>(found.fields),
                            number<quint8>(found.fields + 1), number<quint8>(found.fields + 2),
                            number<quint8>(found.fields + 3),
                            double(number<qint64>(found.fields + 16)) * number<double>(found.fields + 24)});
        return found.links[0];
    }

    const QByteArray& bytes;
    mdf4_file file;
};

} // namespace

mdf4_file read_mdf4(const QByteArray& bytes) {
    return reader(bytes).read();
}
