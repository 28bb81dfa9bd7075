#pragma once

#include "base/settings_table.h"

#include <QHash>
#include <QSettings>

namespace brivant {

// The user defaults: one INI file, which may have been edited by hand. What is read of it has passed the
// checks of the table. Values set are seen by the next reader at once.
class user_defaults {
public:
    // `file`: path of the INI file; it need not exist.
    explicit user_defaults(const QString& file);

    // The value in force; the first value while there is none that can be used.
    template <typename T>
    T value(const typed_setting<T>& which) const {
        return qvariant_cast<T>(value_in_force(which));
    }
    QVariant value_in_force(const setting_row& which) const;
    // True when a value that can be used is stored or in force for this run.
    bool has(const setting_row& which) const { return usable_value(which).isValid(); }

    template <typename T>
    void set(const typed_setting<T>& which, const std::type_identity_t<T>& value) {
        store(which, value);
    }
    void store(const setting_row& which, const QVariant& value);
    void store_first_values(std::initializer_list<setting_row> which);
    void remove(const setting_row& which);
    // The value that readers get from now on, in place of what is stored and without storing it.
    template <typename T>
    void override_for_this_run(const typed_setting<T>& which, const std::type_identity_t<T>& value) {
        overridden.insert(which.file_key(), value);
    }
    // Stores what the person chose, which also ends what was asked for this run alone.
    template <typename T>
    void choose(const typed_setting<T>& which, const std::type_identity_t<T>& value) {
        store(which, value);
        overridden.remove(which.file_key());
    }
    // Writes to the file now. False when it cannot be written or was unreadable.
    bool synchronise();

private:
    QVariant usable_value(const setting_row& which) const;

    QSettings written;
    QHash<QString, QVariant> overridden;
};

} // namespace brivant
