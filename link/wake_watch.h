#pragma once

#include <QObject>

namespace brivant {

// Tells when the computer has been woken, by the login service of the system's bus. Where there is none,
// nothing is told.
class wake_watch : public QObject {
    Q_OBJECT

public:
    wake_watch();

Q_SIGNALS:
    void woke();

private Q_SLOTS:
    void prepare_for_sleep(bool is_going_to);
};

} // namespace brivant
