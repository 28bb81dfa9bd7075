#include "shell/known_adapter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype most_adapters = 24;
constexpr qsizetype most_vehicles = 64;
constexpr qsizetype longest_line = 2000;
constexpr qsizetype longest_name = 60;

} // namespace

QString word_of_link(int kind) {
    switch (kind) {
    case interface_bluetooth: return QStringLiteral("Bluetooth");
    case interface_le: return QStringLiteral("Bluetooth LE");
    case interface_serial: return QStringLiteral("USB");
    case interface_wifi: return QStringLiteral("Wi-Fi");
    default: return QStringLiteral("Stand-in");
    }
}

QString cleaned_name(const QString& typed) {
    QString name = typed.simplified();
    name.removeIf([](QChar c) { return !c.isPrint(); });
    return name.left(longest_name);
}

QString line_of(const known_adapter& one) {
    QJsonArray vehicles;
    for (const int id : one.vehicles)
        vehicles += id;
    const QJsonObject told{{QStringLiteral("where"), one.where.text()},
                           {QStringLiteral("name"), one.name},
                           {QStringLiteral("named"), one.is_named},
                           {QStringLiteral("greeting"), one.greeting},
                           {QStringLiteral("used"), one.last_used.toString(Qt::ISODate)},
                           {QStringLiteral("vehicles"), vehicles},
                           {QStringLiteral("falls_at_reset"), one.falls_at_reset}};
    return QString::fromUtf8(QJsonDocument(told).toJson(QJsonDocument::Compact));
}

std::optional<known_adapter> known_adapter_of_line(const QString& line) {
    if (line.size() > longest_line)
        return std::nullopt;
    const QJsonObject told = QJsonDocument::fromJson(line.toUtf8()).object();
    const auto text = [&](const char* key) { return told[QLatin1String(key)].toString(); };
    const std::optional<adapter_address> where = adapter_address::of(text("where"));
    const QJsonArray vehicles = told[QLatin1String("vehicles")].toArray();
    if (!where || text("name") != cleaned_name(text("name")) ||
        text("greeting") != cleaned_name(text("greeting")) || vehicles.size() > most_vehicles)
        return std::nullopt;
    known_adapter one;
    one.where = *where;
    one.name = text("name");
    one.is_named = told[QLatin1String("named")].toBool();
    one.greeting = text("greeting");
    one.falls_at_reset = told[QLatin1String("falls_at_reset")].toBool();
    one.last_used = QDate::fromString(text("used"), Qt::ISODate);
    for (const QJsonValue id : vehicles) {
        if (id.toInt(-1) <= 0)
            return std::nullopt;
        one.vehicles += id.toInt();
    }
    return one;
}

QList<known_adapter> known_adapters_in(const QStringList& lines) {
    QList<known_adapter> found;
    for (const QString& line : lines) {
        const auto one = known_adapter_of_line(line);
        const bool is_news =
            one && std::none_of(found.begin(), found.end(), [&](const known_adapter& other) {
                return other.where.kind == one->where.kind && other.where.key() == one->where.key();
            });
        if (is_news && found.size() < most_adapters)
            found += *one;
    }
    std::stable_sort(found.begin(), found.end(), [](const known_adapter& one, const known_adapter& other) {
        return one.last_used > other.last_used;
    });
    return found;
}

// One that nobody named goes first when there are too many.
QStringList lines_of(const QList<known_adapter>& adapters) {
    QList<known_adapter> kept = adapters;
    while (kept.size() > most_adapters) {
        const auto last =
            std::find_if(kept.rbegin(), kept.rend(), [](const known_adapter& one) { return !one.is_named; });
        kept.remove(last == kept.rend() ? kept.size() - 1 : kept.rend() - last - 1);
    }
    QStringList lines;
    for (const known_adapter& one : kept)
        lines += line_of(one);
    return lines;
}

} // namespace brivant
