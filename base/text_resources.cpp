#include "base/text_resources.h"

#include <QFile>

namespace brivant {

namespace {

const QString list_type = QStringLiteral("txt");
constexpr qint64 largest_list = 4 * 1024 * 1024;

std::optional<QStringList> read_lines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromUtf8(file.read(largest_list)).split(QLatin1Char('\n'));
}

} // namespace

text_resources::text_resources(const QString& list_folder) : folder(list_folder) {}

const QStringList* text_resources::find(const QString& name, const QString& type) const {
    const QString file = name + QLatin1Char('.') + type;
    auto found = lists.find(file);
    if (found == lists.end())
        found = lists.insert(file, read_lines(folder + QLatin1Char('/') + file));
    return found->has_value() ? &found->value() : nullptr;
}

std::optional<QStringList> text_resources::get_array_from_resource(const QString& name,
                                                                   const QString& type) const {
    const QStringList* list = find(name, type);
    return list ? std::optional(*list) : std::nullopt;
}

std::optional<QMap<QString, QString>>
text_resources::get_dictionary_from_resource(const QString& name, const QString& type,
                                             const QString& delimiter) const {
    const QStringList* list = find(name, type);
    if (!list)
        return std::nullopt;
    QMap<QString, QString> dictionary;
    for (const QString& entry : *list) {
        const qsizetype at = entry.indexOf(delimiter);
        if (at < 0)
            break;
        dictionary.insert(entry.first(at).trimmed(), entry.sliced(at));
    }
    return dictionary;
}

std::optional<QString> text_resources::line(const QString& name, qsizetype index) const {
    const QStringList* list = find(name, list_type);
    if (!list || index < 0 || index >= list->size())
        return std::nullopt;
    return list->at(index);
}

} // namespace brivant
