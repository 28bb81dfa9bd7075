#pragma once

#include "base/ini_text.h"

#include <QHash>

namespace brivant {

// The INI file of the settings, as the persons of a computer share it: several programs may change it at
// once, each its own keys, and a person may edit it. What is not changed stays as it stands, down to the
// comments. A link is followed to the file that it leads to; what is no regular file is left alone.
class settings_file {
public:
    explicit settings_file(const QString& path) : name(path) {}

    // What it holds; nothing, and a problem(), when it cannot be read. A file that is not there holds
    // nothing.
    QHash<QString, QVariant> values();
    // Waits up to two seconds for another program that changes it. False and a problem() when the file is as
    // it was.
    bool change(const ini_changes& changes);
    // A sentence for the person, "" while the last call went well.
    const QString& problem() const { return what_is_wrong; }

private:
    // Where a link leads to. "" and a reason when that is nothing to be used.
    QString place();
    std::optional<QByteArray> bytes(const QString& path);
    bool stored(const QString& path, const ini_changes& changes);

    const QString name;
    QString reason;
    QString what_is_wrong;
};

} // namespace brivant
