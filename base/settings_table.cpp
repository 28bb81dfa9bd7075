#include "base/settings_table.h"

namespace brivant {

namespace {

constexpr qsizetype most_texts = 1000;
const QString place_of_number = QStringLiteral("%d");

} // namespace

QString setting_row::file_key() const {
    QString whole = QString::fromLatin1(key);
    return whole.endsWith(place_of_number) ? whole.replace(place_of_number, QString::number(vehicle)) : whole;
}

QVariant setting_row::value_of(const QString& text) const {
    switch (type) {
    case kind::flag: return text == QLatin1String("true");
    case kind::number: return text.toInt();
    case kind::texts: return text.split(u',', Qt::SkipEmptyParts);
    default: return text;
    }
}

QVariant setting_row::checked(const QVariant& stored) const {
    if (!stored.isValid())
        return {};
    switch (type) {
    case kind::flag: return stored.toBool();
    case kind::number: {
        bool is_number = false;
        const int number = stored.toString().trimmed().toInt(&is_number);
        const std::optional<int> taken = !is_number     ? std::nullopt
                                         : bound.usable ? bound.usable(number)
                                                        : std::optional(number);
        return taken ? QVariant(*taken) : QVariant();
    }
    case kind::texts: return stored.toStringList().mid(0, most_texts);
    default: // an unquoted comma in a hand-edited file makes a list of the text
        return stored.toStringList().join(u',').left(bound.longest);
    }
}

std::optional<setting_row> setting::with_key(const QString& key) {
    for (const setting_row* row : all) {
        setting_row found = *row;
        const qsizetype place = QLatin1String(row->key).indexOf(place_of_number);
        if (place >= 0)
            found.vehicle = key.mid(place).toInt();
        if (found.file_key() == key && (place < 0 || found.vehicle > 0))
            return found;
    }
    return std::nullopt;
}

} // namespace brivant
