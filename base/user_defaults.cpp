#include "base/user_defaults.h"

user_defaults::user_defaults(const QString& file) : store(file, QSettings::IniFormat) {
    store.setFallbacksEnabled(false);
}

QVariant user_defaults::value_of(const QString& key) const {
    if (!overridden.isEmpty()) {
        const auto own = overridden.constFind(key);
        if (own != overridden.constEnd())
            return *own;
    }
    return store.value(key);
}

void user_defaults::override_for_this_run(const QString& key, const QVariant& value) {
    overridden.insert(key, value);
}

bool user_defaults::has(const QString& key) const {
    return overridden.contains(key) || store.contains(key);
}

int user_defaults::integer(const QString& key, int if_missing) const {
    bool ok = false;
    const int value = value_of(key).toString().trimmed().toInt(&ok);
    return ok ? value : if_missing;
}

bool user_defaults::boolean(const QString& key, bool if_missing) const {
    const QVariant value = value_of(key);
    return value.isValid() ? value.toBool() : if_missing;
}

QString user_defaults::text(const QString& key, const QString& if_missing, qsizetype longest) const {
    const QVariant value = value_of(key);
    // An unquoted comma in a hand-edited file makes a list of the text.
    return (value.isValid() ? value.toStringList().join(QLatin1Char(',')) : if_missing).left(longest);
}

QStringList user_defaults::list(const QString& key, const QStringList& if_missing) const {
    const QVariant value = value_of(key);
    if (value.isValid())
        return value.toStringList();
    return has(key) ? QStringList() : if_missing; // an empty list is stored as an invalid value
}

void user_defaults::set(const QString& key, const QVariant& value) {
    store.setValue(key, value);
}

void user_defaults::remove(const QString& key) {
    store.remove(key);
}

bool user_defaults::synchronise() {
    store.sync();
    return store.status() == QSettings::NoError;
}

QString sample_set_key(int vehicle_id) {
    return QStringLiteral("pidsSampleArray_%1").arg(vehicle_id);
}
