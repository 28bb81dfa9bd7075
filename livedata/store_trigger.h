#pragma once

#include <QString>
#include <optional>

namespace brivant {

// A PID above or below a value, in the units and the reading that are shown.
struct pid_limit {
    QString pid;
    bool is_above = true;
    double value = 0;
};
// Of "0C>4000"; nothing for another text.
std::optional<pid_limit> pid_limit_of(const QString& text);
QString text_of(const pid_limit& limit);

// When a run is stored: a log from each time that `when` comes true until `until` does, or the run ends.
struct store_trigger {
    pid_limit when;
    std::optional<pid_limit> until;
    int before_s = 0; // the seconds before belong to the log, too
};

} // namespace brivant
