#include "livedata/check_findings.h"
#include "livedata/elm_commands.h"
#include "livedata/passport_words.h"

#include <QJsonArray>

namespace brivant {

namespace {

using grade = check_row::grade;

const char* name_of(grade how) {
    switch (how) {
    case grade::good: return "good";
    case grade::amber: return "amber";
    case grade::red: return "red";
    default: return "not tested";
    }
}

} // namespace

QJsonObject json_of(const check_findings& found) {
    const version_judgement version = judge_version(found.greeting, found.known, found.unknown);
    QJsonArray rows;
    for (const check_row& row : rows_of(found))
        rows += QJsonObject{{"title", row.title}, {"words", row.words}, {"grade", name_of(row.how)}};
    const check_row verdict = verdict_of(found);
    QJsonObject told{{"interface", found.greeting},
                     {"verdict", verdict.words},
                     {"grade", name_of(verdict.how)},
                     {"rows", rows},
                     {"known", QJsonArray::fromStringList(found.known)},
                     {"unknown", QJsonArray::fromStringList(found.unknown)},
                     {"lacking", QJsonArray::fromStringList(version.lacking)},
                     {"longest_command", found.longest_line},
                     {"longest_answer", found.longest.announced},
                     {"requests", found.requests},
                     {"unanswered", found.unanswered},
                     {"garbled", found.garbled},
                     {"wrong", found.wrong},
                     {"doubled", found.doubled}};
    if (found.passport)
        told.insert(QStringLiteral("passport"), json_of(*found.passport));
    return told;
}

} // namespace brivant
