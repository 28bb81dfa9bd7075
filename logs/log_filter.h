#pragma once

#include <QString>

namespace brivant {

// Which of the stored logs are listed.
struct log_filter {
    // The places of the segmented control.
    enum kind : int { all_kinds, dtc, log, o2, misfire, mode6 };
    // The places of the menu. Only the second one shortens the list; the months and the year are named, no
    // more.
    enum recency : int { show_all, last_10_reads, last_month, last_3_months, last_6_months, last_year };

    int log_kind = all_kinds;
    int this_log_filter = show_all;

    // The statement that lists the logs of a vehicle. Places out of range stand for the first ones.
    QString statement(int vehicle_id) const;
    // The name of the recency.
    QString name() const;

    static QString name_of_kind(int place);
    static QString name_of_recency(int place);
    static constexpr int kinds = 6;
    static constexpr int recencies = 6;
};

} // namespace brivant
