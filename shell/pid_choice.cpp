#include "shell/pid_choice.h"

#include "obd/ecu_names.h"
#include "obd/reply_text.h"
#include "obd/supported_pids.h"

#include <algorithm>

namespace brivant {

namespace {

// The record comes from the database file, which may hold anything.
constexpr qsizetype most_ecus = 16;
constexpr qsizetype longest_header = 16;

bool is_pid(const QString& text) {
    return text.size() == 2 && is_hex(text);
}

bool is_map_of_pids(const QString& pid) {
    return convertStr2Byte(pid) % 32 == 0;
}

QString ecu_name(const QString& header) {
    switch (thisHeaderIsEngOrTranny(header)) {
    case 0: return QStringLiteral("Engine");
    case 1: return QStringLiteral("Transmission");
    default: return header;
    }
}

QString engine_header(const obd_groups& ecus) {
    const auto engine = std::find_if(ecus.begin(), ecus.end(), [](const obd_group& ecu) {
        return thisHeaderIsEngOrTranny(ecu.header) == 0;
    });
    return engine != ecus.end() ? engine->header : ecus.isEmpty() ? QString() : ecus.first().header;
}

pid_entry entry_of(const QString& pid, const QString& header, const mac_toolies& toolies) {
    pid_entry entry;
    entry.item = header.isEmpty() ? pid : pid + u'|' + header;
    entry.pid = pid;
    entry.ecu = ecu_name(header);
    entry.name = toolies.get_pid_name_with_pid(pid);
    return entry;
}

// What a run makes of the values of one ECU: fuel economy, boost.
QStringList worked_out_of(const QStringList& pids) {
    QStringList own;
    if (pids.contains(QLatin1String("0D")) &&
        (pids.contains(QLatin1String("10")) || pids.contains(QLatin1String("5E"))))
        own += QStringLiteral("E4");
    if (pids.contains(QLatin1String("0B")))
        own += QStringLiteral("E5");
    return own;
}

qsizetype place_in(const QList<pid_entry>& entries, const QString& item) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&item](const pid_entry& entry) { return entry.item == item; });
    return found == entries.end() ? -1 : found - entries.begin();
}

} // namespace

pid_choice::pid_choice(const obd_groups& available, const QStringList& samples, const mac_toolies& toolies) {
    const obd_groups ecus = available.first(std::min(available.size(), most_ecus));
    for (const obd_group& ecu : ecus) {
        if (ecu.header.size() > longest_header || ecu.header.contains(u'|'))
            continue;
        QStringList pids = ecu.pidSet;
        pids.removeDuplicates();
        for (const QString& pid : pids) {
            if (is_pid(pid) && !is_map_of_pids(pid))
                offered += entry_of(pid, ecu.header, toolies);
        }
        for (const QString& pid : worked_out_of(pids))
            offered += entry_of(pid, ecu.header, toolies);
    }
    const QString engine = engine_header(ecus);
    for (const QString& sample : samples) {
        const auto item = split_sample_item(sample);
        if (!item || item->header.size() > longest_header || is_full())
            continue;
        pid_entry entry = entry_of(item->pid, item->header.isEmpty() ? engine : item->header, toolies);
        entry.reported = place_in(offered, entry.item) >= 0;
        if (!is_chosen(entry.item))
            taken += entry;
    }
}

bool pid_choice::has_several_ecus() const {
    const auto is_another = [this](const pid_entry& entry) { return entry.ecu != offered.first().ecu; };
    return !offered.isEmpty() && (std::any_of(offered.begin(), offered.end(), is_another) ||
                                  std::any_of(taken.begin(), taken.end(), is_another));
}

QStringList pid_choice::items() const {
    QStringList items;
    for (const pid_entry& entry : taken)
        items += entry.item;
    return items;
}

qsizetype pid_choice::place_of(const QString& item) const {
    return place_in(taken, item);
}

bool pid_choice::add(const QString& item) {
    const qsizetype place = place_in(offered, item);
    if (place < 0 || is_chosen(item) || is_full())
        return false;
    taken += offered.at(place);
    return true;
}

bool pid_choice::remove(const QString& item) {
    const qsizetype place = place_of(item);
    if (place >= 0)
        taken.removeAt(place);
    return place >= 0;
}

bool pid_choice::move(qsizetype from, qsizetype to) {
    if (from < 0 || from >= taken.size() || to < 0 || to >= taken.size())
        return false;
    taken.move(from, to);
    return true;
}

bool pid_choice::matches(const pid_entry& entry, const QString& search) {
    const QString text = entry.pid + u' ' + entry.name + u' ' + entry.ecu + u' ' + entry.item;
    const QStringList words = search.split(u' ', Qt::SkipEmptyParts);
    return std::all_of(words.begin(), words.end(),
                       [&text](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

} // namespace brivant
