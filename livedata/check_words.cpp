#include "livedata/check_findings.h"
#include "livedata/elm_commands.h"
#include "livedata/passport_words.h"
#include "livedata/probe_answers.h"

#include <algorithm>

namespace brivant {

namespace {

using grade = check_row::grade;
using effect = adapter_passport::effect;
using honesty = version_judgement::honesty;

constexpr int line_needed = 32;     // the longest that is sent, and some
constexpr double many_lost = 0.05;  // of the requests
constexpr double slow_ms = 250;     // for one value
constexpr qsizetype most_named = 8; // commands

const QString not_tested = QStringLiteral("not tested");

QString rounded(double number) {
    return QString::number(number, 'f', number < 10 ? 1 : 0);
}

version_judgement judged(const check_findings& found) {
    return judge_version(found.greeting, found.known, found.unknown);
}

QString some_of(const QStringList& commands) {
    const QString named = commands.mid(0, most_named).join(QStringLiteral(", "));
    const qsizetype more = commands.size() - most_named;
    return more > 0 ? QStringLiteral("%1 and %2 more").arg(named).arg(more) : named;
}

QString acts_like(const version_judgement& version) {
    return version.behaves_as.isEmpty() ? QStringLiteral("not even those of the first one")
                                        : QStringLiteral("all those of version %1").arg(version.behaves_as);
}

// --- the adapter alone -------------------------------------------------------------------------------------

check_row version_row(const check_findings& found) {
    const QString title = QStringLiteral("Version");
    const version_judgement version = judged(found);
    if (found.says_ok_to_anything)
        return {grade::amber, title,
                QStringLiteral("says %1; not proven, because it answers OK to a command that does not exist")
                    .arg(version.said.isEmpty() ? QStringLiteral("none") : version.said)};
    switch (version.how) {
    case honesty::honest:
        return {grade::good, title,
                QStringLiteral("honest: it says %1, and knows all %2 commands tried that this version has")
                    .arg(version.said)
                    .arg(version.of)};
    case honesty::too_new:
        return {
            grade::amber, title,
            QStringLiteral("not true: it says %1, and does not know %2 of the %3 commands tried that this "
                           "version has; it knows %4")
                .arg(version.said)
                .arg(version.lacking.size())
                .arg(version.of)
                .arg(acts_like(version))};
    case honesty::no_such_version:
        return {
            grade::amber, title,
            QStringLiteral("not true: it says %1, which was never made; of the commands tried it knows %2")
                .arg(version.said, acts_like(version))};
    default:
        return {grade::none, title,
                version.said.isEmpty() ? not_tested
                                       : QStringLiteral("says %1; not tested to the end").arg(version.said)};
    }
}

check_row commands_row(const check_findings& found) {
    const QString title = QStringLiteral("Commands");
    const qsizetype tried = found.known.size() + found.unknown.size();
    if (tried == 0)
        return {grade::none, title, not_tested};
    const QString words = QStringLiteral("knows %1 of %2 tried").arg(found.known.size()).arg(tried);
    return {found.unknown.isEmpty() || judged(found).how == honesty::honest ? grade::good : grade::amber,
            title,
            found.unknown.isEmpty() ? words : words + QStringLiteral("; not ") + some_of(found.unknown)};
}

check_row line_row(const check_findings& found) {
    const QString title = QStringLiteral("Longest command");
    if (found.longest_line == 0 && found.too_long == 0)
        return {grade::none, title, not_tested};
    QString words = QStringLiteral("%1 characters come through").arg(found.longest_line);
    if (found.too_long > 0)
        words += QStringLiteral(", %1 do not").arg(found.too_long);
    return {found.longest_line < line_needed ? grade::red : grade::good, title, words};
}

check_row alone_row(const check_findings& found) {
    const QString title = QStringLiteral("Answers of the adapter alone");
    if (found.alone_ms.isEmpty())
        return {grade::none, title, not_tested};
    const double usual_ms = median(found.alone_ms);
    return {
        usual_ms > slow_ms ? grade::amber : grade::good, title,
        QStringLiteral("after %1 ms, at worst %2 ms (%3 commands)")
            .arg(rounded(usual_ms), rounded(*std::max_element(found.alone_ms.begin(), found.alone_ms.end())))
            .arg(found.alone_ms.size())};
}

// --- with the car ------------------------------------------------------------------------------------------

QString why_not_asked(const check_findings& found) {
    return found.car_was_asked && !found.car_answers
               ? not_tested + QStringLiteral(": the car does not answer")
               : not_tested;
}

QString service_of(const QString& request) {
    if (request.startsWith(QLatin1String("06")))
        return QStringLiteral("mode 6");
    return request.startsWith(QLatin1String("09")) ? QStringLiteral("vehicle information")
                                                   : QStringLiteral("service ") + request.left(2);
}

QString cut_words(const check_findings::long_answer& cut) {
    return QStringLiteral("of an answer of %1 bytes only %2 come").arg(cut.announced).arg(cut.came);
}

const check_findings::long_answer* worst_cut(const check_findings& found) {
    const auto worst = std::max_element(found.cut.begin(), found.cut.end(), [](const auto& a, const auto& b) {
        return a.announced < b.announced;
    });
    return worst == found.cut.end() ? nullptr : &*worst;
}

check_row answer_row(const check_findings& found) {
    const QString title = QStringLiteral("Longest answer");
    constexpr int of_one_frame = 7; // bytes
    if (const auto* cut = worst_cut(found))
        return {grade::red, title,
                QStringLiteral("%1: %2; the longest that came whole has %3 bytes")
                    .arg(service_of(cut->request), cut_words(*cut))
                    .arg(found.longest.announced)};
    if (found.longest.announced > of_one_frame)
        return {
            grade::good, title,
            QStringLiteral("%1 bytes came whole; this car has no longer one").arg(found.longest.announced)};
    return {grade::none, title,
            found.car_answers ? not_tested + QStringLiteral(": this car has no such answer")
                              : why_not_asked(found)};
}

check_row pace_row(const check_findings& found) {
    const QString title = QStringLiteral("Answers of the car");
    if (found.car_ms.isEmpty())
        return {grade::none, title, why_not_asked(found)};
    const double usual_ms = median(found.car_ms);
    return {
        usual_ms > slow_ms ? grade::amber : grade::good, title,
        QStringLiteral("after %1 ms, at worst %2 ms")
            .arg(rounded(usual_ms), rounded(*std::max_element(found.car_ms.begin(), found.car_ms.end())))};
}

QString kinds_of_loss(const check_findings& found) {
    QStringList kinds;
    for (const auto& [count, word] : {std::pair(found.unanswered, "not answered"),
                                      {found.garbled, "garbled"},
                                      {found.wrong, "answered by something else"},
                                      {found.doubled, "answered twice"}})
        if (count > 0)
            kinds += QStringLiteral("%1 %2").arg(count).arg(QLatin1String(word));
    return kinds.join(QStringLiteral(", "));
}

grade loss_grade(const check_findings& found) {
    return found.bad() == 0                           ? grade::good
           : found.bad() > many_lost * found.requests ? grade::red
                                                      : grade::amber;
}

check_row loss_row(const check_findings& found) {
    const QString title = QStringLiteral("Losses");
    if (found.requests == 0)
        return {grade::none, title, why_not_asked(found)};
    return {loss_grade(found), title,
            found.bad() == 0
                ? QStringLiteral("none in %1 requests").arg(found.requests)
                : QStringLiteral("of %1 requests %2").arg(found.requests).arg(kinds_of_loss(found))};
}

QString usual_pace(const check_findings& found) {
    return rounded(1000 / std::max(1.0, median(found.car_ms)));
}

check_row values_row(const check_findings& found) {
    const QString title = QStringLiteral("Values a second");
    if (found.car_ms.isEmpty())
        return {grade::none, title, why_not_asked(found)};
    QString words = QStringLiteral("%1, one a request").arg(usual_pace(found));
    if (found.passport && found.passport->values_a_second > 0)
        words += QStringLiteral("; a fast run reaches %1").arg(rounded(found.passport->values_a_second));
    return {median(found.car_ms) > slow_ms ? grade::amber : grade::good, title, words};
}

bool lacks_something(const adapter_passport& passport) {
    const std::array all{passport.no_blanks, passport.waits_shorter, passport.addresses_one, passport.counts};
    return passport.hangs || passport.too_many > 0 || std::any_of(all.begin(), all.end(), [](effect one) {
               return one == effect::none || one == effect::fails;
           });
}

check_row fast_row(const check_findings& found) {
    const QString title = QStringLiteral("Fast runs");
    if (!found.passport)
        return {grade::none, title, why_not_asked(found)};
    return {lacks_something(*found.passport) ? grade::amber : grade::good, title,
            sentences_of(*found.passport).join(u' ')};
}

check_row effect_row(const char* title, effect what, const check_findings& found, const QString& untried) {
    switch (what) {
    case effect::shown: return {grade::good, QLatin1String(title), QStringLiteral("works")};
    case effect::none:
        return {grade::amber, QLatin1String(title), QStringLiteral("is answered OK, and has no effect")};
    case effect::fails: return {grade::amber, QLatin1String(title), QStringLiteral("answers are lost by it")};
    default:
        return {grade::none, QLatin1String(title),
                found.requests > 0 ? not_tested + untried : why_not_asked(found)};
    }
}

// --- the verdict -------------------------------------------------------------------------------------------

QString pace_words(const check_findings& found) {
    const QString usual = QStringLiteral("%1 values/s").arg(usual_pace(found));
    return found.passport && found.passport->values_a_second > 0
               ? usual + QStringLiteral(" (%1 in a fast run)").arg(rounded(found.passport->values_a_second))
               : usual;
}

QString about_use(const check_findings& found) {
    if (found.greeting.isEmpty() && found.requests == 0)
        return QStringLiteral("No verdict: the adapter was not heard.");
    if (found.requests == 0)
        return QStringLiteral("No verdict on its work: only the adapter alone was checked%1.")
            .arg(found.car_was_asked && !found.car_answers ? QStringLiteral(", the car does not answer")
                                                           : QString());
    const QString losses = QStringLiteral("%1 of %2 requests were not answered as they should")
                               .arg(found.bad())
                               .arg(found.requests);
    QString words;
    switch (loss_grade(found)) {
    case grade::red: words = QStringLiteral("Not good for this car: ") + losses; break;
    case grade::amber:
        words = QStringLiteral("Usable for codes and live data at %1, but %2").arg(pace_words(found), losses);
        break;
    default: words = QStringLiteral("Good for codes and live data at %1").arg(pace_words(found));
    }
    if (const auto* cut = worst_cut(found))
        words += QStringLiteral("; cannot read all of %1 of this car: %2")
                     .arg(service_of(cut->request), cut_words(*cut));
    return words + u'.';
}

QString about_version(const check_findings& found) {
    const version_judgement version = judged(found);
    if (found.says_ok_to_anything)
        return QStringLiteral("It answers OK to anything, so that its version is not proven.");
    switch (version.how) {
    case honesty::honest: return QStringLiteral("It is honest about its version, %1.").arg(version.said);
    case honesty::too_new:
        return QStringLiteral(
                   "A copy that is not honest about its version: it says %1 and does not know %2 of "
                   "its %3 commands tried.")
            .arg(version.said)
            .arg(version.lacking.size())
            .arg(version.of);
    case honesty::no_such_version:
        return QStringLiteral("A copy: it says version %1, which was never made.").arg(version.said);
    default: return {};
    }
}

QString about_faults(const check_findings& found) {
    if (!found.troubles.isEmpty())
        return found.troubles.first();
    QStringList none;
    if (found.passport && lacks_something(*found.passport))
        none += found.passport->hangs ? QStringLiteral("it falls silent at several PIDs in one request")
                                      : QStringLiteral("it lacks some of what a fast run uses");
    if (found.waits == effect::none || found.filters == effect::none)
        none += QStringLiteral("it says OK to settings without effect");
    if (none.isEmpty())
        return {};
    QString words = none.join(QStringLiteral(", and ")) + u'.';
    words[0] = words[0].toUpper();
    return words;
}

} // namespace

QList<check_row> rows_of(const check_findings& found) {
    QList<check_row> rows;
    for (const QString& trouble : found.troubles)
        rows += {grade::red, QStringLiteral("Trouble"), trouble};
    rows += version_row(found);
    if (!found.chip.isEmpty())
        rows += {grade::good, QStringLiteral("Chip"), found.chip};
    for (const auto& row :
         {commands_row, line_row, alone_row, answer_row, pace_row, loss_row, values_row, fast_row})
        rows += row(found);
    rows += effect_row("Waiting time (AT ST)", found.waits, found,
                       QStringLiteral(": the adapter does not wait behind an answer"));
    rows += effect_row("Answers of one ECU alone (AT CRA)", found.filters, found,
                       QStringLiteral(": only one ECU answers, or not on CAN"));
    return rows;
}

check_row verdict_of(const check_findings& found) {
    check_row verdict{grade::good, QStringLiteral("Verdict"), {}};
    QStringList sentences{about_use(found), about_version(found), about_faults(found)};
    sentences.removeAll(QString());
    verdict.words = sentences.join(u' ');
    if (found.requests == 0) {
        verdict.how = found.troubles.isEmpty() ? grade::none : grade::red;
        return verdict;
    }
    for (const check_row& row : rows_of(found))
        verdict.how = std::max(verdict.how, row.how);
    return verdict;
}

} // namespace brivant
