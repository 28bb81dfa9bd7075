#include "livedata/passport_words.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace brivant {

namespace {

using effect = adapter_passport::effect;
using limit = adapter_passport::limit;

struct ability_words {
    effect adapter_passport::*what;
    const char* doing;
};
constexpr ability_words abilities[] = {
    {&adapter_passport::no_blanks, "leaving out blanks"},
    {&adapter_passport::waits_shorter, "waiting less long behind an answer"},
    {&adapter_passport::addresses_one, "asking one ECU alone"},
    {&adapter_passport::counts, "ending an answer at its last frame"},
};

QStringList with(const adapter_passport& passport, effect wanted) {
    QStringList doing;
    for (const ability_words& one : abilities)
        if (passport.*one.what == wanted)
            doing += QLatin1String(one.doing);
    return doing;
}

QString joined(const QStringList& parts) {
    return parts.size() < 2 ? parts.join(QString())
                            : parts.first(parts.size() - 1).join(QStringLiteral(", ")) +
                                  QStringLiteral(" and ") + parts.last();
}

QString rounded(double number) {
    return QString::number(number, 'f', number < 10 ? 1 : 0);
}

QString nature_of(const adapter_passport& passport) {
    const bool has_faults = passport.hangs || !with(passport, effect::fails).isEmpty();
    if (!with(passport, effect::none).isEmpty())
        return QStringLiteral("By what it does, an adapter that says OK also to what it does not do");
    if (has_faults || passport.too_many > 0)
        return QStringLiteral("By what it does, an adapter that lacks some of what a fast run uses");
    return QStringLiteral("By what it does, an adapter that can do all that was tried");
}

QString about_groups(const adapter_passport& passport) {
    QStringList words;
    if (passport.most_pids > 1)
        words += QStringLiteral("It answers %1 PIDs in one request.").arg(passport.most_pids);
    if (passport.too_many > 0)
        words += (passport.hangs ? QStringLiteral("It falls silent at %1 PIDs in one request.")
                                 : QStringLiteral("It does not answer %1 PIDs in one request in full."))
                     .arg(passport.too_many);
    return words.join(u' ');
}

const char* name_of(limit what) {
    switch (what) {
    case limit::ecu: return "ecu";
    case limit::way: return "radio";
    case limit::line: return "serial";
    case limit::adapter: return "adapter";
    default: return "unknown";
    }
}

} // namespace

QString limit_sentence(const adapter_passport& passport) {
    const auto of = [whole = passport.answer_ms + passport.rest_ms](double part_ms) {
        return QStringLiteral("%1 of the %2 ms of a request").arg(rounded(part_ms), rounded(whole));
    };
    switch (passport.limited_by()) {
    case limit::ecu:
        return QStringLiteral("The car limits it: its ECU takes %1.")
            .arg(of(passport.answer_ms - passport.command_ms));
    case limit::way:
        return QStringLiteral("The way to the adapter and back limits it: it takes %1.")
            .arg(of(passport.command_ms));
    case limit::line:
        return QStringLiteral("The adapter's serial line limits it: the bytes take %1.")
            .arg(of(passport.rest_ms));
    case limit::adapter:
        return QStringLiteral("The adapter limits it: waiting for more answers takes %1.")
            .arg(of(passport.rest_ms));
    default: return {};
    }
}

QStringList sentences_of(const adapter_passport& passport) {
    QStringList sentences{QStringLiteral("%1 (%2, in a car of which %3 answered).")
                              .arg(nature_of(passport), passport.probed.toString(Qt::ISODate),
                                   passport.ecus == 1 ? QStringLiteral("one ECU")
                                                      : QStringLiteral("%1 ECUs").arg(passport.ecus))};
    if (passport.unanswered > 0)
        sentences +=
            QStringLiteral("Of the first 20 requests %1 got no whole answer.").arg(passport.unanswered);
    if (const QStringList shown = with(passport, effect::shown); !shown.isEmpty())
        sentences += QStringLiteral("What works: %1.").arg(joined(shown));
    if (const QStringList none = with(passport, effect::none); !none.isEmpty())
        sentences += QStringLiteral("Without effect: %1.").arg(joined(none));
    if (const QStringList fails = with(passport, effect::fails); !fails.isEmpty())
        sentences += QStringLiteral("Answers are lost by %1.").arg(joined(fails));
    sentences += about_groups(passport);
    if (passport.values_a_second > 0)
        sentences += QStringLiteral("It reached %1 values a second.").arg(rounded(passport.values_a_second));
    sentences += limit_sentence(passport);
    sentences.removeAll(QString());
    return sentences;
}

QString brief_words(const adapter_passport& passport) {
    QString words = QStringLiteral("does all that was tried");
    if (!with(passport, effect::none).isEmpty())
        words = QStringLiteral("says OK to what it does not do");
    else if (passport.hangs || passport.too_many > 0 || !with(passport, effect::fails).isEmpty())
        words = QStringLiteral("lacks some of what a fast run uses");
    return passport.values_a_second > 0
               ? words + QStringLiteral(", %1 values/s").arg(rounded(passport.values_a_second))
               : words;
}

QJsonObject json_of(const adapter_passport& passport) {
    QJsonObject told = QJsonDocument::fromJson(line_of(passport).toUtf8()).object();
    told[QLatin1String("limited_by")] = QLatin1String(name_of(passport.limited_by()));
    told[QLatin1String("sentences")] = QJsonArray::fromStringList(sentences_of(passport));
    return told;
}

} // namespace brivant
