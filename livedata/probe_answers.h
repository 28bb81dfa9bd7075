#pragma once

#include <QList>
#include <QStringList>
#include <functional>

namespace brivant {

// What came of one request of the probe.
struct probe_answer {
    bool is_whole = false; // of the engine, every PID, and nothing else
    int frames = 0;        // its
    int lines = 0;
    int values = 0;
    QStringList ecus;
    qsizetype bytes = 0;
    double first_ms = 0; // until its first byte
    double whole_ms = 0; // until the prompt
    double tail_ms() const { return whole_ms - first_ms; }
};
using probe_answers = QList<probe_answer>;

double median(QList<double> numbers);
// The median of a number that each of them has.
template <typename Number>
double median_of(const probe_answers& came, Number number) {
    QList<double> numbers;
    for (const probe_answer& one : came)
        numbers += static_cast<double>(std::invoke(number, one));
    return median(numbers);
}

int unanswered(const probe_answers& came);
// Their prompt came clearly sooner than that of the ones before.
bool is_sooner(const probe_answers& now, const probe_answers& before);

} // namespace brivant
