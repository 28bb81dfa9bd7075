#include "livedata/elm_commands.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>

namespace brivant {

namespace {

// clang-format off
constexpr const char* hex_digits = "0|1|2|3|4|5|6|7|8|9|A|B|C|D|E|F";
constexpr elm_command commands[] = {
    {"AT DP",     "1.0",  "AUTO|ISO|SAE"},
    {"AT RV",     "1.0",  "V|."},
    {"AT CAF1",   "1.0",  "OK"},
    {"AT CFC1",   "1.0",  "OK"},
    {"AT R1",     "1.0",  "OK"},
    {"AT PPS",    "1.1",  ":"},
    {"AT FC SM 0","1.1",  "OK"},
    {"AT AR",     "1.2",  "OK"},
    {"AT AT1",    "1.2",  "OK"},
    {"AT KW1",    "1.2",  "OK"},
    {"AT D0",     "1.3",  "OK"},
    {"AT S1",     "1.3",  "OK"},
    {"AT JE",     "1.3",  "OK"},
    {"AT FE",     "1.3a", "OK"},
    {"AT CEA",    "1.4",  "OK"},
    {"AT IGN",    "1.4",  "ON|OFF"},
    {"AT RD",     "1.4",  hex_digits},
    {"AT CRA",    "1.4b", "OK"},
    {"AT JHF1",   "1.4b", "OK"},
    {"AT AMC",    "2.0",  hex_digits},
    {"AT CTM1",   "2.1",  "OK"},
};
// clang-format on

constexpr std::array versions{"1.0", "1.0a", "1.1", "1.2", "1.2a", "1.3", "1.3a",
                              "1.4", "1.4b", "2.0", "2.1", "2.2",  "2.3"};

int place_of(const char* since) {
    return place_of_version(QLatin1String(since)).value_or(0);
}

} // namespace

std::span<const elm_command> elm_commands() {
    return commands;
}

QString version_in(const QString& greeting) {
    static const QRegularExpression number(QStringLiteral("v ?(\\d+\\.\\d+[a-z]?)"),
                                           QRegularExpression::CaseInsensitiveOption);
    return number.match(greeting).captured(1).toLower();
}

std::optional<int> place_of_version(const QString& version) {
    const auto* const found = std::find_if(versions.begin(), versions.end(),
                                           [&](const char* one) { return QLatin1String(one) == version; });
    return found == versions.end() ? std::nullopt : std::optional(static_cast<int>(found - versions.begin()));
}

version_judgement judge_version(const QString& greeting, const QStringList& known,
                                const QStringList& unknown) {
    version_judgement made;
    made.said = version_in(greeting);
    if (known.isEmpty() && unknown.isEmpty())
        return made;
    const std::optional<int> place = place_of_version(made.said);
    int first_lacking = static_cast<int>(versions.size());
    for (const elm_command& one : commands)
        if (unknown.contains(QLatin1String(one.text)))
            first_lacking = std::min(first_lacking, place_of(one.since));
    bool is_proven = true;
    for (const elm_command& one : commands) {
        const QString text = QLatin1String(one.text);
        const bool is_lacking = unknown.contains(text);
        if (!is_lacking && !known.contains(text)) {
            is_proven = is_proven && place && place_of(one.since) > *place;
            continue;
        }
        if (place_of(one.since) < first_lacking)
            made.behaves_as = QLatin1String(one.since);
        if (!place || place_of(one.since) > *place)
            continue;
        ++made.of;
        if (is_lacking)
            made.lacking += text;
    }
    using honesty = version_judgement::honesty;
    if (made.said.isEmpty())
        return made;
    made.how = !place                    ? honesty::no_such_version
               : !made.lacking.isEmpty() ? honesty::too_new
               : is_proven               ? honesty::honest
                                         : honesty::unknown;
    return made;
}

} // namespace brivant
