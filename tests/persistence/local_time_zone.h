#pragma once

#include <QByteArray>
#include <cstdlib>
#include <ctime>

namespace brivant {

// The local time zone of the process while the object lives.
class local_time_zone {
public:
    explicit local_time_zone(const char* zone)
        : before(qgetenv("TZ")), was_set(qEnvironmentVariableIsSet("TZ")) {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~local_time_zone() {
        was_set ? setenv("TZ", before.constData(), 1) : unsetenv("TZ");
        tzset();
    }
    Q_DISABLE_COPY_MOVE(local_time_zone)

private:
    const QByteArray before;
    const bool was_set;
};

} // namespace brivant
