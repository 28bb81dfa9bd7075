#pragma once

#include "livedata/adapter_passport.h"

#include <QJsonObject>
#include <QStringList>

namespace brivant {

// What the adapter check has found out so far. What was not tried is empty.
struct check_findings {
    using effect = adapter_passport::effect;

    // The adapter alone.
    QString greeting;           // what it says that it is
    QString chip;               // what it says to STI, where it knows that
    QStringList known, unknown; // see elm_commands
    bool says_ok_to_anything = false;
    int longest_line = 0;   // characters of a command that came through
    int too_long = 0;       // that did not; 0: none of those tried
    QList<double> alone_ms; // from each command to the prompt

    // With the car.
    bool car_was_asked = false;
    bool car_answers = false;
    struct long_answer {
        QString request; // "0902"
        int announced = 0;
        int came = 0; // bytes
    };
    long_answer longest; // that came whole
    QList<long_answer> cut;
    int requests = 0, unanswered = 0, garbled = 0, wrong = 0, doubled = 0;
    QList<double> car_ms; // of the answered requests, to the prompt
    std::optional<adapter_passport> passport;
    effect waits = effect::untried;   // AT ST
    effect filters = effect::untried; // AT CRA

    QStringList troubles; // sentences: what it could not bear

    int bad() const { return unanswered + garbled + wrong + doubled; }
};

// A fact for the person.
struct check_row {
    enum class grade { none, good, amber, red } how = grade::none; // none: not tested
    QString title;
    QString words;
};

// The facts in the order in which they are shown, and what they come to, in one to three sentences.
QList<check_row> rows_of(const check_findings& found);
check_row verdict_of(const check_findings& found);
// The same and the numbers, for a script.
QJsonObject json_of(const check_findings& found);

} // namespace brivant
