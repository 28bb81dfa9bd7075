#pragma once

#include <QString>
#include <QStringList>
#include <initializer_list>

namespace brivant {

// The user-visible texts that are looked up by key (table "Brivant"). A key that is missing is shown itself.
QString localised(const QString& key);
// As above, with a text of the caller's for a missing key.
QString localised(const QString& key, const QString& if_missing);
// Every key of the table, for the check that code and table agree.
QStringList localised_keys();

// Fills the places of a format in order: "%@" and "%s" take the text, "%d" the number's digits. Arguments
// are given as texts; "%%" prints a percent sign. Places without an argument stay as they are.
QString fill(const QString& format, std::initializer_list<QString> arguments);

} // namespace brivant
