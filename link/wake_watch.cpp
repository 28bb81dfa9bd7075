#include "link/wake_watch.h"

#include <QDBusConnection>

namespace brivant {

wake_watch::wake_watch() {
    QDBusConnection::systemBus().connect(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"), this,
        SLOT(prepare_for_sleep(bool)));
}

void wake_watch::prepare_for_sleep(bool is_going_to) {
    if (!is_going_to)
        Q_EMIT woke();
}

} // namespace brivant
