#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

namespace brivant {

// The plain text lists that the program ships: one entry a line, lines separated by "\n" (a trailing empty
// line is an entry). They are compiled in and never change, so a list once read is kept.
class text_resources {
public:
    // `folder`: where the lists are found; the compiled-in ones by default.
    explicit text_resources(const QString& folder = QStringLiteral(":/lists"));

    // The lines of the list `name` of the given type ("txt"), or nothing when there is no such file.
    std::optional<QStringList> get_array_from_resource(const QString& name, const QString& type) const;

    // The list as a dictionary: key = the text before the first `delimiter`, trimmed; value = the rest of
    // the line, delimiter included. Building stops at the first line without a delimiter.
    std::optional<QMap<QString, QString>>
    get_dictionary_from_resource(const QString& name, const QString& type, const QString& delimiter) const;

    // Line `index` of the list, or nothing when the list or the line does not exist.
    std::optional<QString> line(const QString& name, qsizetype index) const;

private:
    const QStringList* find(const QString& name, const QString& type) const;

    QString folder;
    mutable QHash<QString, std::optional<QStringList>> lists;
};

} // namespace brivant
