#pragma once

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QString>
#include <QVariant>
#include <optional>

namespace brivant {

// The INI form of QSettings, as far as the settings use it.

// The keys of the general section, with their values: texts, and lists of texts where commas stand outside
// quotes. An empty list is an invalid value.
QHash<QString, QVariant> values_of_ini(const QByteArray& ini);

// What is to become of keys; one without a value goes. Values are flags, numbers, texts and lists of texts.
using ini_changes = QMap<QString, std::optional<QVariant>>;

// The text with keys of its general section changed. Everything else stays as it stands, comments among it.
QByteArray with_changed_keys(const QByteArray& ini, const ini_changes& changes);

} // namespace brivant
