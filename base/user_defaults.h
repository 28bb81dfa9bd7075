#pragma once

#include "base/settings_file.h"
#include "base/settings_table.h"

#include <QHash>
#include <QObject>

namespace brivant {

// The user defaults: one INI file, which may have been edited by hand. What is read of it has passed the
// checks of the table. Values set are seen by the next reader at once, and reach the file with the next turn
// of the event loop, or when this goes away.
class user_defaults {
public:
    // `file`: path of the INI file; it need not exist.
    explicit user_defaults(const QString& file);
    ~user_defaults();
    Q_DISABLE_COPY_MOVE(user_defaults)

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
    // Writes to the file now. False when it cannot be written or was unreadable: see problem(). What was not
    // written is tried again with the next change.
    bool synchronise();
    // A sentence for the person, "" while the file is in order.
    const QString& problem() const { return file.problem(); }

private:
    QVariant usable_value(const setting_row& which) const;
    void change(const setting_row& which, const std::optional<QVariant>& value);

    settings_file file;
    QHash<QString, QVariant> values; // what the file holds, and what is to be written
    ini_changes unwritten;
    bool is_due = false; // they have not been tried
    QObject next_turn;
    QHash<QString, QVariant> overridden;
};

} // namespace brivant
