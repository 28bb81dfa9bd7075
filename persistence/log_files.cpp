#include "persistence/log_files.h"

#include "base/console_log.h"
#include "base/settings_table.h"
#include "base/string_table.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <algorithm>
#include <array>
#include <ctime>
#include <optional>
#include <string_view>

namespace brivant {

namespace {

constexpr std::array<const char*, setting::sample_rates.size()> rate_keys{
    "AS_FAST_AS_AVAIL", "EVERY_10_SECS", "EVERY_30_SECS", "EVERY_MIN", "EVERY_2_MINS", "EVERY_5_MINS"};

const char* prefix_of(int task) {
    switch (task) {
    case 1: return "dtc_";
    case 3: return "xprt_";
    case 4: return "log_";
    case 5: return "frz_";
    case 6: return "vinfo_";
    case 7: return "fuel_";
    case 8: return "mode6_";
    case 11: return "misfire_";
    case 13: return "boost_";
    case 14: return "o2_";
    default: return "other_";
    }
}

// A time stamp of the database in local time; nothing for other text.
std::optional<std::tm> local_time(const QString& utc) {
    const std::time_t moment = seconds_of_time_stamp(utc.toLatin1());
    std::tm local{};
    return moment != -1 && localtime_r(&moment, &local) ? std::optional(local) : std::nullopt;
}

} // namespace

QString loggies_folder(const QString& folder) {
    const QString path = folder + QStringLiteral("/loggies");
    if (!QDir().mkpath(path))
        console_log(QStringLiteral("Couldn't create loggies folder"));
    return path;
}

QString pull_out_docs_dir(const QString& documents) {
    return loggies_folder(documents);
}

QString work_out_log_fname(const QString& documents, const QString& file_name) {
    return pull_out_docs_dir(documents) + u'/' + file_name;
}

QString work_out_log_fname_for_mode(const QString& application_folder, int task, bool metric,
                                    const QDateTime& now) {
    return fill(QStringLiteral("%@/%@%@"),
                {loggies_folder(application_folder), QLatin1String(prefix_of(task)),
                 get_todays_date(false, metric, now)});
}

void delete_a_log(const QString& application_folder, const QString& file_name) {
    QFile file(loggies_folder(application_folder) + u'/' + file_name);
    if (!file.remove())
        console_log(QStringLiteral("oops: %1").arg(file.errorString()));
}

QString get_todays_date(bool for_display, bool metric, const QDateTime& now) {
    const int hour = now.time().hour() % 12 == 0 ? 12 : now.time().hour() % 12;
    const QString hours = QString::number(hour).rightJustified(2, u'0');
    const QString day =
        QLocale::c().toString(now, metric ? QStringLiteral("dd_MMM_yyyy") : QStringLiteral("MMM_dd_yyyy"));
    const QString minutes = now.toString(QStringLiteral("mm"));
    const QString seconds = now.toString(QStringLiteral("ss"));
    if (for_display)
        return QString(day).replace(u'_', u' ') + u' ' + hours + u':' + minutes + u':' + seconds;
    return day + u'-' + hours + minutes + u'_' + seconds;
}

// By hand: an export asks for every line, and Qt's parser takes longer than all the rest of it.
qint64 seconds_of_time_stamp(QByteArrayView utc) {
    const auto fits = [](char c, char place) { return place == '0' ? c >= '0' && c <= '9' : c == place; };
    if (!std::ranges::equal(utc, std::string_view("0000-00-00 00:00:00"), fits))
        return -1;
    const auto number = [utc](qsizetype at, qsizetype digits = 2) {
        int value = 0;
        for (const char digit : utc.sliced(at, digits))
            value = value * 10 + (digit - '0');
        return value;
    };
    const QDate day(number(0, 4), number(5), number(8));
    const QTime time(number(11), number(14), number(17));
    if (!day.isValid() || !time.isValid())
        return -1;
    return QDate(1970, 1, 1).daysTo(day) * 86400 + time.msecsSinceStartOfDay() / 1000;
}

QString gmt_date_str_2_local_date_str(const QString& utc) {
    const auto local = local_time(utc);
    if (!local)
        return {};
    return QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", local->tm_year + 1900, local->tm_mon + 1,
                             local->tm_mday, local->tm_hour, local->tm_min, local->tm_sec);
}

QString format_date_str(const QString& utc) {
    const auto local = local_time(utc);
    if (!local)
        return {};
    const QDate day(local->tm_year + 1900, local->tm_mon + 1, local->tm_mday);
    return QLocale::c().toString(day, QStringLiteral("d MMM yyyy ")) +
           QString::asprintf("%02d:%02d", local->tm_hour, local->tm_min);
}

int secs_4_sampling(int index) {
    return index >= 1 && index < static_cast<int>(setting::sample_rates.size())
               ? setting::sample_rates[static_cast<size_t>(index)]
               : -1;
}

QString text_4_sampling(int seconds) {
    for (size_t i = 1; i < setting::sample_rates.size(); ++i) {
        if (setting::sample_rates[i] == seconds)
            return localised(QLatin1String(rate_keys[i]));
    }
    return localised(QLatin1String(rate_keys[0]));
}

} // namespace brivant
