#pragma once

#include "obd/readings/sampled_value.h"

#include <QHash>
#include <functional>
#include <optional>
#include <vector>

namespace brivant {

// The other way round: reply bodies ("410C1AF8") whose numbers are these, sweep after sweep. A PID's further
// quantities are not in its number, so the bytes of those say nothing.
class body_finder {
public:
    // `lists` outlive it.
    body_finder(QStringList its_pids, const sample_reading& its_reading, const text_resources& its_lists);

    // One a column; "~" for no value, and for one that no body of the PID has: each body was decoded again.
    QStringList bodies_of(const std::vector<std::optional<double>>& values);

private:
    using decoder = std::function<double(const QString& body)>;
    struct layout {
        int bytes;
        int at;
        int width; // the bytes that make the number, the first at `at`
        quint8 fill;
    };

    QString body_of(int column, double value, const decoder& number_of);
    static std::optional<QString> searched(const QString& pid, const layout& where, double value,
                                           const decoder& number_of);

    const QStringList pids;
    const sample_reading reading;
    const text_resources& lists;
    QList<int> of_sweep;               // columns whose numbers need the others
    QList<QList<layout>> layouts;      // a column: where its number may stand, the latest one first
    QList<QHash<double, QString>> met; // a column
};

} // namespace brivant
