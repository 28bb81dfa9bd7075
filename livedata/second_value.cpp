#include "livedata/second_value.h"

#include "obd/standard_reading/pid_values.h"

#include <utility>

second_value read_value(const QString& body, const mac_toolies& toolies) {
    second_value value{toolies.translateResponse(body), {}};
    if (!body.startsWith(QLatin1String("41")))
        return value;
    value.other = other_value_text(value.text, body, toolies.units());
    if (!value.other.isEmpty() && toolies.standard_reading())
        std::swap(value.text, value.other);
    return value;
}

double number_of_value(const QString& body, const mac_toolies& toolies) {
    if (toolies.standard_reading()) {
        const pid_value standard = read_pid_value(body, toolies.units());
        if (!standard.quantities.isEmpty())
            return standard.quantities.first().value;
    }
    return toolies.get_OBDVal(body);
}
