#pragma once

#include "livedata/request_plan.h"

#include <QDate>
#include <optional>

namespace brivant {

// What an adapter is by what it does: what came of trying it, whatever it calls itself and whatever it
// answers to a setting. Times are medians in milliseconds.
struct adapter_passport {
    enum class effect { untried, fails, none, shown }; // fails: answers did not come

    enum class limit { unknown, ecu, way, line, adapter };

    QString address; // see adapter_place
    QDate probed;
    int ecus = 0;               // that answered to one request
    int unanswered = 0;         // of the first requests, by the engine
    double command_ms = 0;      // the way there and back, and the adapter alone
    double plain_ms = 0;        // from a request to the prompt, as the adapter is set up at first
    double answer_ms = 0;       // from a request to the first byte of its answer, at its best
    double rest_ms = 0;         // its bytes on the line, and the wait behind them
    double values_a_second = 0; // reached
    effect no_blanks = effect::untried;
    effect waits_shorter = effect::untried; // behind an answer
    effect addresses_one = effect::untried; // ECU alone; untried where only one answers
    effect counts = effect::untried;        // ends a request behind as many frames as it says
    int most_pids = 0;                      // that were answered whole in one request; 0: untried
    int too_many = 0;                       // so many were not; 0: none
    bool hangs = false;                     // it fell silent at them

    bool operator==(const adapter_passport&) const = default;

    limit limited_by() const;
    // What is not known to fail.
    request_plan::abilities abilities() const;
    // A run has learnt that it can do less.
    void learn(const request_plan::abilities& what);
};

// One line of text; nothing is made of a line with anything wrong in it.
QString line_of(const adapter_passport& passport);
std::optional<adapter_passport> passport_of_line(const QString& line);

// Among lines, the adapter's own; and the lines with it, the newest last, at most 16.
std::optional<adapter_passport> passport_in(const QStringList& lines, const QString& address);
QStringList with_passport(const QStringList& lines, const adapter_passport& passport);

} // namespace brivant
