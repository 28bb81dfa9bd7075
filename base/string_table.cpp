#include "base/string_table.h"

#include <QFile>
#include <QMap>

namespace brivant {

namespace {

// Each line of the table is KEY = text; "\n" in the text stands for a line end. Lines that begin with
// "#" are notes.
QMap<QString, QString> read_table(const QString& path) {
    QMap<QString, QString> table;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return table;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const qsizetype at = line.indexOf(QStringLiteral(" = "));
        if (at <= 0 || line.startsWith(QLatin1Char('#')))
            continue;
        table.insert(line.first(at).trimmed(),
                     line.sliced(at + 3).replace(QStringLiteral("\\n"), QStringLiteral("\n")));
    }
    return table;
}

const QMap<QString, QString>& brivant_table() {
    static const QMap<QString, QString> table = read_table(QStringLiteral(":/strings/Brivant.en.strings"));
    return table;
}

} // namespace

QString localised(const QString& key) {
    return brivant_table().value(key, key);
}

QString localised(const QString& key, const QString& if_missing) {
    return brivant_table().value(key, if_missing);
}

QStringList localised_keys() {
    return brivant_table().keys();
}

QString fill(const QString& format, std::initializer_list<QString> arguments) {
    QString result;
    result.reserve(format.size() + 64);
    auto next = arguments.begin();
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar kind =
            format.at(i) == QLatin1Char('%') && i + 1 < format.size() ? format.at(i + 1) : QChar();
        if (kind == QLatin1Char('%')) {
            result += kind;
            ++i;
        } else if ((kind == QLatin1Char('@') || kind == QLatin1Char('d') || kind == QLatin1Char('s')) &&
                   next != arguments.end()) {
            result += *next++;
            ++i;
        } else {
            result += format.at(i);
        }
    }
    return result;
}

} // namespace brivant
