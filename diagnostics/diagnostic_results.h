#pragma once

#include "diagnostics/result_rows.h"
#include "obd/readiness.h"
#include "obd/reply.h"

#include <QMap>
#include <algorithm>

namespace brivant {

// What one request brought: the reply as it came, and the rows that the program made from it.
struct answer {
    QString request; // "03", "0902", "010C", "020C00"; "" for rows about what nobody was asked
    reply what_came;
    QString ecu; // the header of the ECU whose answer the rows hold, "" for all of them
    QList<result_row> rows;
    qint64 milliseconds = 0; // since the start of its operation
};

// Rows about what nobody was asked.
inline answer facts(const QList<result_row>& rows) {
    return {QString(), reply(), QString(), rows};
}

inline const QString freezing_code_request =
    QStringLiteral("020200"); // of the answer that leads the freeze frame

// What the diagnostic operations have read, kept until each operation's next run, also while another screen
// is shown.
struct diagnostic_results {
    // In the order of the requests. The readiness has its reply here, its rows below.
    QMap<part, QList<answer>> answers;

    QList<result_row> rows(part which) const {
        QList<result_row> all;
        for (const answer& one : answers.value(which))
            all += one.rows;
        return all;
    }
    // Asked while a list grows, so it looks no further than the first row.
    bool has_rows(part which) const {
        const QList<answer> all = answers.value(which);
        return std::any_of(all.begin(), all.end(), [](const answer& one) { return !one.rows.isEmpty(); });
    }

    bool has_any_rows() const {
        return std::any_of(answers.keyBegin(), answers.keyEnd(),
                           [this](part each) { return has_rows(each); });
    }

    QList<readiness_row> readinessFlagsArray; // eleven monitors, or none
    QStringList xtraInfoArray;                // facts about the read
    QString cur_err_msg;                      // "Read on: ..." of the last read
    bool pending_received = true;             // false: some or all ECUs' pending codes did not come

    // How far the running operation has come; 0 of 0 when that is not known.
    int progress_done = 0;
    int progress_total = 0;
    std::optional<QString>
        not_cleared;              // "" when the car has confirmed the clearing, else who refused and why
    bool car_offers_none = false; // the test that ran last ended because the car has no results of its kind

    int no_of_ecus = 0;
    int no_of_codes = 0; // as the monitor status announces them
    bool milLamp = false;

    // What the view's labels show.
    QString mil_label;
    QString code_count_label;
    QString read_on_label;
    QString xtra_info_label;

    QMap<QString, QString> P0_Codes; // code descriptions, loaded when first needed
};

} // namespace brivant
