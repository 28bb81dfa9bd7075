#include "base/user_defaults.h"

#include "base/console_log.h"

namespace brivant {

user_defaults::user_defaults(const QString& path) : file(path), values(file.values()) {}

user_defaults::~user_defaults() {
    if (is_due)
        synchronise();
}

QVariant user_defaults::usable_value(const setting_row& which) const {
    const QString key = which.file_key();
    if (!overridden.isEmpty()) {
        const auto own = overridden.constFind(key);
        if (own != overridden.constEnd())
            return *own;
    }
    const auto stored = values.constFind(key);
    if (stored == values.constEnd())
        return {};
    if (which.type == setting_row::kind::texts && !stored->isValid())
        return QStringList(); // an empty list is stored as an invalid value
    return which.checked(*stored);
}

QVariant user_defaults::value_in_force(const setting_row& which) const {
    const QVariant value = usable_value(which);
    return value.isValid() ? value : which.first_value();
}

void user_defaults::store(const setting_row& which, const QVariant& value) {
    change(which, value);
}

void user_defaults::store_first_values(std::initializer_list<setting_row> which) {
    for (const setting_row& one : which)
        store(one, one.first_value());
}

void user_defaults::remove(const setting_row& which) {
    change(which, std::nullopt);
}

void user_defaults::change(const setting_row& which, const std::optional<QVariant>& value) {
    const QString key = which.file_key();
    unwritten.insert(key, value);
    if (value)
        values.insert(key, *value);
    else
        values.remove(key);
    if (!std::exchange(is_due, true))
        QMetaObject::invokeMethod(
            &next_turn,
            [this] {
                if (is_due)
                    synchronise();
            },
            Qt::QueuedConnection);
}

bool user_defaults::synchronise() {
    is_due = false;
    if (!unwritten.isEmpty() && !file.change(unwritten)) {
        console_log(file.problem());
        return false;
    }
    unwritten.clear();
    const auto held = file.values();
    if (file.problem().isEmpty())
        values = held;
    return file.problem().isEmpty();
}

} // namespace brivant
