#include "obd/supported_pids.h"

#include "base/console_log.h"
#include "obd/ecu_names.h"
#include "obd/obd_messages.h"
#include "obd/reply_text.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype map_digits = 8;
constexpr qsizetype most_ecus = 16; // a reply that names more is no reply of a car

// True when bit `index` of the map is set; the most significant bit of the first byte is bit 0.
bool bit_of_map(QStringView map, qsizetype index) {
    return (charToNibble(map[index / 4]) >> (3 - index % 4) & 1) != 0;
}

qsizetype data_place(const QString& line) {
    static constexpr QLatin1String answers[] = {QLatin1String("4100"), QLatin1String("4120"),
                                                QLatin1String("4140"), QLatin1String("4160")};
    if (line.startsWith(QStringLiteral("7E")))
        return 5;
    const bool is_29_bit = std::any_of(std::begin(answers), std::end(answers), [&line](QLatin1String answer) {
        return line.mid(10, 4) == answer && line.mid(6, 4) != answer;
    });
    return is_29_bit ? 10 : 6;
}

// The map that follows "41" and the PID in a line with its header; "" when there is none.
QString map_in_line(const QString& line) {
    const QString data = line.mid(data_place(line), 4 + map_digits);
    const bool holds_map =
        data.size() == 4 + map_digits && data.startsWith(QStringLiteral("41")) && is_hex(data);
    return holds_map ? data.sliced(4) : QString();
}

QString item_text(const QString& pid, const QString& header) {
    return pid + u'|' + header;
}

// The items of a sample set for the ECUs of this car, from items that name their ECU.
QStringList rewritten(const QList<sample_item>& items, const obd_groups& available, const obd_group& engine) {
    const bool has_transmission =
        available.size() > 1 && std::any_of(available.begin(), available.end(), [](const obd_group& ecu) {
            return thisHeaderIsEngOrTranny(ecu.header) == 1;
        });
    QString engine_header = engine.header;
    QStringList result;
    for (const sample_item& item : items) {
        if (thisHeaderIsEngOrTranny(item.header) != 1) {
            if (engine.pidSet.contains(item.pid))
                result.append(item_text(item.pid, engine_header));
        } else if (has_transmission && available[1].pidSet.contains(item.pid)) {
            // The ECU at place 1 counts as the transmission whichever it is, and its header stands for the
            // engine in the items that follow: both on purpose.
            engine_header = available[1].header;
            result.append(item_text(item.pid, engine_header));
        }
    }
    return result;
}

} // namespace

void handle_00_replies(const QString& reply, int this_pid_group, group_bitmaps& bitmaps) {
    if (this_pid_group < 0 || this_pid_group >= static_cast<int>(bitmaps.size()))
        return;
    QString first_map;
    QString engine_map;
    for (const QString& line : reply_lines(reply)) {
        const QString map = map_in_line(line);
        if (first_map.isEmpty())
            first_map = map;
        if (!map.isEmpty() && pull_ECU(line) == QStringLiteral("Engine"))
            engine_map = map;
    }
    const QString& map = engine_map.isEmpty() ? first_map : engine_map;
    if (!map.isEmpty())
        bitmaps[static_cast<size_t>(this_pid_group)] = map;
}

bool is_this_code_available(const QString& bitmap, const QString& this_pid, int this_pid_set) {
    const qint64 index = qint64(convertStr2Byte(this_pid)) - 1 - 32 * qint64(this_pid_set);
    return bitmap.size() >= map_digits && index >= 0 && index < 32 && bit_of_map(bitmap, index);
}

void add_supported_pids(obd_groups& found, const reply& maps, const QString& unnamed, const QString& answer,
                        qsizetype map_at, unsigned first) {
    const auto add = [&](const QString& header, const QString& data) {
        if (!data.startsWith(answer) || found.size() >= most_ecus)
            return;
        auto its_entry = std::find_if(found.begin(), found.end(), [&](const obd_group& known) {
            return same_ecu(known.header, header, maps.protocol());
        });
        if (its_entry == found.end())
            its_entry = found.insert(found.end(), {header, {}});
        its_entry->pidSet += pids_of_bitmap(data.mid(map_at, map_digits), first);
    };
    if (!maps.headers_shown())
        return add(QString(), unnamed);
    for (const ecu_said& ecu : maps.ecus())
        add(ecu.header, ecu.data);
}

bool is_map_announced(const obd_groups& found, unsigned first) {
    return std::any_of(found.begin(), found.end(),
                       [&](const obd_group& ecu) { return ecu.pidSet.contains(convertByte2HexStr(first)); });
}

QStringList pids_of_bitmap(const QString& bitmap, unsigned first) {
    const QString map = bitmap.leftJustified(map_digits, u'0', true);
    QStringList pids;
    for (unsigned i = 0; i < 32 && first < 0xFF - i; ++i) {
        if (bit_of_map(map, i))
            pids.append(convertByte2HexStr(first + 1 + i));
    }
    return pids;
}

std::optional<sample_item> split_sample_item(const QString& item) {
    const QStringList pieces = item.split(u'|');
    if (pieces.first().size() != 2 || !is_hex(pieces.first()))
        return std::nullopt;
    return sample_item{pieces.first(), pieces.value(1)};
}

bool isPID_in_avail_pid_list(const obd_groups& available, const sample_item& this_pid, int protocol) {
    return std::all_of(available.begin(), available.end(), [&](const obd_group& ecu) {
        return !same_ecu(ecu.header, this_pid.header, protocol) || ecu.pidSet.contains(this_pid.pid);
    });
}

bool isEveryItemInSampleSetAvailable(const QStringList& samples, const obd_groups& availablePIDs,
                                     int protocol) {
    for (const QString& sample : samples) {
        const std::optional<sample_item> item = split_sample_item(sample);
        if (!item || !sample.contains(u'|')) {
            console_log(QStringLiteral("mac_toolies::isSampleSetAvailable Excptn:no ECU in ") + sample);
            return true;
        }
        if (!isPID_in_avail_pid_list(availablePIDs, *item, protocol))
            return false;
    }
    return true;
}

QStringList fixSamplePids(const QStringList& samples, const obd_groups& available, int protocol) {
    if (available.isEmpty() || samples.isEmpty())
        return samples;
    const obd_group& engine = available[findEngineEcuIdx(available, protocol)];
    const bool names_ecus = samples.first().contains(u'|');
    QList<sample_item> items;
    for (const QString& sample : samples) {
        if (const std::optional<sample_item> item = split_sample_item(sample))
            items.append({item->pid, names_ecus ? item->header : QString()});
    }
    return rewritten(items, available, engine);
}

QString arrayToJsonStr(const obd_groups& list) {
    QJsonArray array;
    for (const obd_group& ecu : list) {
        array.append(QJsonObject{{QStringLiteral("header"), ecu.header},
                                 {QStringLiteral("pidSet"), QJsonArray::fromStringList(ecu.pidSet)}});
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

obd_groups pids_from_json(const QString& json) {
    obd_groups list;
    const QJsonArray entries = QJsonDocument::fromJson(json.toUtf8()).array();
    for (const QJsonValue entry : entries) {
        const QJsonValue header = entry[QStringLiteral("header")];
        const QJsonValue pids = entry[QStringLiteral("pidSet")];
        if (!header.isString() || !pids.isArray())
            return {};
        list.append({header.toString(), {}});
        const QJsonArray texts = pids.toArray();
        for (const QJsonValue pid : texts) {
            if (!pid.isString())
                return {};
            list.last().pidSet.append(pid.toString());
        }
    }
    return list;
}

bool same_pid_sets(const obd_groups& one, const obd_groups& other, int protocol) {
    const auto holds_all_of = [protocol](const obd_groups& list, const obd_groups& entries) {
        return std::all_of(entries.begin(), entries.end(), [&](const obd_group& entry) {
            return std::any_of(list.begin(), list.end(), [&](const obd_group& ecu) {
                return same_ecu(ecu.header, entry.header, protocol) && ecu.pidSet == entry.pidSet;
            });
        });
    };
    return holds_all_of(one, other) && holds_all_of(other, one);
}

} // namespace brivant
