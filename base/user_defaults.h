#pragma once

#include <QHash>
#include <QSettings>
#include <QString>
#include <QStringList>

// The user defaults: one INI file. Every reader names its own first value, since a key may be missing
// and the file may have been edited by hand. Values set are seen by the next reader at once.
class user_defaults {
public:
    // `file`: path of the INI file; it need not exist.
    explicit user_defaults(const QString& file);

    bool has(const QString& key) const;
    int integer(const QString& key, int if_missing) const;
    bool boolean(const QString& key, bool if_missing) const;
    // At most `longest` characters are returned.
    QString text(const QString& key, const QString& if_missing, qsizetype longest = 4096) const;
    QStringList list(const QString& key, const QStringList& if_missing) const;

    void set(const QString& key, const QVariant& value);
    void remove(const QString& key);
    // The value that readers get from now on, in place of what is stored and without storing it.
    void override_for_this_run(const QString& key, const QVariant& value);
    // Writes to the file now. False when it cannot be written or was unreadable.
    bool synchronise();

private:
    QVariant value_of(const QString& key) const;

    QSettings store;
    QHash<QString, QVariant> overridden;
};

// The key that holds the sample PIDs of a vehicle.
QString sample_set_key(int vehicle_id);
