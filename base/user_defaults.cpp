#include "base/user_defaults.h"

namespace brivant {

user_defaults::user_defaults(const QString& file) : written(file, QSettings::IniFormat) {
    written.setFallbacksEnabled(false);
}

QVariant user_defaults::usable_value(const setting_row& which) const {
    const QString key = which.file_key();
    if (!overridden.isEmpty()) {
        const auto own = overridden.constFind(key);
        if (own != overridden.constEnd())
            return *own;
    }
    const QVariant stored = written.value(key);
    if (which.type == setting_row::kind::texts && !stored.isValid() && written.contains(key))
        return QStringList(); // an empty list is stored as an invalid value
    return which.checked(stored);
}

QVariant user_defaults::value_in_force(const setting_row& which) const {
    const QVariant value = usable_value(which);
    return value.isValid() ? value : which.first_value();
}

void user_defaults::store(const setting_row& which, const QVariant& value) {
    written.setValue(which.file_key(), value);
}

void user_defaults::store_first_values(std::initializer_list<setting_row> which) {
    for (const setting_row& one : which)
        store(one, one.first_value());
}

void user_defaults::remove(const setting_row& which) {
    written.remove(which.file_key());
}

bool user_defaults::synchronise() {
    written.sync();
    return written.status() == QSettings::NoError;
}

} // namespace brivant
