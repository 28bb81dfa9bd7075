#include "logs/log_filter.h"

#include "base/string_table.h"

#include <array>

namespace brivant {

namespace {

struct kind_row {
    const char* name;
    const char* fragment;
};

// clang-format off
constexpr std::array<kind_row, log_filter::kinds> kind_rows{{
    {"All",           ""},
    {"Trouble codes", " AND  LOG_TYPE='DTC' "},
    {"Log runs",      " AND  LOG_TYPE='Log' "},
    {"O2",            " AND  LOG_TYPE IN('O2','O2 Test') "},
    {"Misfire",       " AND  LOG_TYPE='Misfire' "},
    {"Mode 6",        " AND  LOG_TYPE='Mode6' "},
}};

constexpr std::array<const char*, log_filter::recencies> recency_keys{
    "SHOW_ALL",           "SHOW_LAST_10_READS",   "SHOW_LAST_MONTH",
    "SHOW_LAST_3_MONTHS", "SHOW_LAST_6_MONTHS",   "SHOW_LAST_YEAR"};
// clang-format on

template <class rows>
const auto& row_of(const rows& table, int place) {
    return table.at(place >= 0 && place < static_cast<int>(table.size()) ? static_cast<size_t>(place) : 0);
}

} // namespace

QString log_filter::statement(int vehicle_id) const {
    const QString text =
        QStringLiteral("SELECT  * FROM LOGGIES where veh_id=%d  %@ %@ ORDER by time_stamp DESC ");
    return fill(
        this_log_filter == last_10_reads ? text + QStringLiteral("LIMIT 10 ") : text,
        {QString::number(vehicle_id), QString(), QLatin1String(row_of(kind_rows, log_kind).fragment)});
}

QString log_filter::name() const {
    return name_of_recency(this_log_filter);
}

QString log_filter::name_of_kind(int place) {
    return QLatin1String(row_of(kind_rows, place).name);
}

QString log_filter::name_of_recency(int place) {
    return localised(QLatin1String(row_of(recency_keys, place)));
}

} // namespace brivant
