#pragma once

#include "base/shared_types.h"
#include "obd/readiness.h"

#include <QMap>

// What the diagnostic operations have read, kept until each operation's next run, also while another screen is
// shown. Rows are "|"-joined texts.
struct diagnostic_results {
    QStringList codesReadArray;               // "P0133|7E8", or the text of "NO_CODES" alone
    QList<readiness_row> readinessFlagsArray; // eleven monitors, or none
    QStringList xtraInfoArray;                // facts about the read
    QString cur_err_msg;                      // "Read on: ..." of the last read

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
