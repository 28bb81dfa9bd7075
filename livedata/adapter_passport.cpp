#include "livedata/adapter_passport.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>

namespace brivant {

namespace {

using effect = adapter_passport::effect;

constexpr qsizetype most_passports = 16;
constexpr qsizetype longest_line = 2000;
constexpr qsizetype longest_address = 200;

constexpr std::array<const char*, 4> effect_names{"untried", "fails", "none", "shown"};

struct number_field {
    const char* key;
    double adapter_passport::*field;
};
struct count_field {
    const char* key;
    int adapter_passport::*field;
    int most;
};
struct effect_field {
    const char* key;
    effect adapter_passport::*field;
};

constexpr double largest_number = 100'000;
constexpr number_field numbers[] = {
    {"command_ms", &adapter_passport::command_ms},
    {"plain_ms", &adapter_passport::plain_ms},
    {"answer_ms", &adapter_passport::answer_ms},
    {"rest_ms", &adapter_passport::rest_ms},
    {"values_a_second", &adapter_passport::values_a_second},
};
constexpr count_field counts[] = {
    {"ecus", &adapter_passport::ecus, 64},
    {"unanswered", &adapter_passport::unanswered, 1000},
    {"most_pids", &adapter_passport::most_pids, 6},
    {"too_many", &adapter_passport::too_many, 6},
};
constexpr effect_field effects[] = {
    {"no_blanks", &adapter_passport::no_blanks},
    {"waits_shorter", &adapter_passport::waits_shorter},
    {"addresses_one", &adapter_passport::addresses_one},
    {"counts", &adapter_passport::counts},
};

bool is_number(const QJsonValue& value, double most) {
    return value.isDouble() && value.toDouble() >= 0 && value.toDouble() <= most;
}

bool take_numbers(const QJsonObject& told, adapter_passport& passport) {
    for (const number_field& one : numbers) {
        if (!is_number(told[QLatin1String(one.key)], largest_number))
            return false;
        passport.*one.field = told[QLatin1String(one.key)].toDouble();
    }
    for (const count_field& one : counts) {
        const QJsonValue value = told[QLatin1String(one.key)];
        if (!is_number(value, one.most) || value.toDouble() != std::floor(value.toDouble()))
            return false;
        passport.*one.field = value.toInt();
    }
    return true;
}

bool take_effects(const QJsonObject& told, adapter_passport& passport) {
    return std::all_of(std::begin(effects), std::end(effects), [&](const effect_field& one) {
        const auto name =
            std::find(effect_names.begin(), effect_names.end(), told[QLatin1String(one.key)].toString());
        if (name == effect_names.end())
            return false;
        passport.*one.field = static_cast<effect>(name - effect_names.begin());
        return true;
    });
}

} // namespace

adapter_passport::limit adapter_passport::limited_by() const {
    if (answer_ms <= 0 || values_a_second <= 0)
        return limit::unknown;
    const double ecu_ms = answer_ms - command_ms;
    if (rest_ms > std::max(ecu_ms, command_ms))
        return counts == effect::shown ? limit::line : limit::adapter;
    return ecu_ms > command_ms ? limit::ecu : limit::way;
}

request_plan::abilities adapter_passport::abilities() const {
    return {.most_pids = too_many == 0 ? 6 : std::max(1, most_pids),
            .counts = counts != effect::fails,
            .addresses_one = addresses_one == effect::untried || addresses_one == effect::shown};
}

void adapter_passport::learn(const request_plan::abilities& what) {
    const request_plan::abilities before = abilities();
    if (what.most_pids < before.most_pids) {
        too_many = before.most_pids;
        most_pids = what.most_pids;
    }
    if (!what.counts && before.counts)
        counts = effect::fails;
}

QString line_of(const adapter_passport& passport) {
    QJsonObject told{{QStringLiteral("address"), passport.address},
                     {QStringLiteral("probed"), passport.probed.toString(Qt::ISODate)},
                     {QStringLiteral("hangs"), passport.hangs}};
    for (const number_field& one : numbers)
        told[QLatin1String(one.key)] = std::round(passport.*one.field * 10) / 10;
    for (const count_field& one : counts)
        told[QLatin1String(one.key)] = passport.*one.field;
    for (const effect_field& one : effects)
        told[QLatin1String(one.key)] = QLatin1String(effect_names[static_cast<size_t>(passport.*one.field)]);
    return QString::fromUtf8(QJsonDocument(told).toJson(QJsonDocument::Compact));
}

std::optional<adapter_passport> passport_of_line(const QString& line) {
    if (line.size() > longest_line)
        return std::nullopt;
    const QJsonObject told = QJsonDocument::fromJson(line.toUtf8()).object();
    adapter_passport passport;
    passport.address = told[QLatin1String("address")].toString();
    passport.probed = QDate::fromString(told[QLatin1String("probed")].toString(), Qt::ISODate);
    passport.hangs = told[QLatin1String("hangs")].toBool();
    const bool is_good = !passport.address.isEmpty() && passport.address.size() <= longest_address &&
                         passport.probed.isValid() && told[QLatin1String("hangs")].isBool() &&
                         take_numbers(told, passport) && take_effects(told, passport);
    return is_good ? std::optional(passport) : std::nullopt;
}

std::optional<adapter_passport> passport_in(const QStringList& lines, const QString& address) {
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        if (const auto passport = passport_of_line(*line); passport && passport->address == address)
            return passport;
    return std::nullopt;
}

QStringList with_passport(const QStringList& lines, const adapter_passport& passport) {
    QStringList kept;
    for (const QString& line : lines)
        if (const auto other = passport_of_line(line); other && other->address != passport.address)
            kept += line;
    kept += line_of(passport);
    return kept.mid(std::max<qsizetype>(0, kept.size() - most_passports));
}

} // namespace brivant
