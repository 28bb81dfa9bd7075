#pragma once

#include "obd/readiness.h"
#include "obd/reply.h"

#include <QMap>

// The lists whose replies are kept, to be read a second time: see second_reading.
enum class result_list { codes, pending, freeze, vehicle, mode6, misfire, o2, permanent, status };

// A reply as it came, and the rows that the program made from it. It is kept before they are told.
struct kept_reply {
    QString request; // "03", "0902", "010C", "020C00"
    reply what_came;
    QString ecu;        // the header of the ECU whose answer the rows hold, "" for all of them
    qsizetype row = 0;  // the first of the rows in its list
    qsizetype rows = 0; // how many
};

// What the diagnostic operations have read, kept until each operation's next run, also while another screen
// is shown. Rows are "|"-joined texts.
struct diagnostic_results {
    QStringList codesReadArray;               // "P0133|7E8", or the text of "NO_CODES" alone
    QList<readiness_row> readinessFlagsArray; // eleven monitors, or none
    QStringList xtraInfoArray;                // facts about the read
    QString cur_err_msg;                      // "Read on: ..." of the last read

    QStringList pendingArray;     // "P0133|7E8"
    bool pending_received = true; // false: some or all ECUs' pending codes did not come
    QStringList freezeArray;      // "Freezed by: P0133| ...", then "Engine RPM: 1726.00 RPM" ...
    QStringList vehInfoArray;     // see work_out_vehicle_info
    QStringList mode6Array;       // test results: see mode6_records.h
    QStringList misfireArray;
    QStringList o2XtraArray;
    QStringList xtrasArray;       // "label:| value |"
    QStringList cur_CAN_raw_data; // a compact copy of each record of the test that ran last

    // How far the running operation has come; 0 of 0 when that is not known.
    int progress_done = 0;
    int progress_total = 0;
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

    // Emptied with the rows of its list; in the order of the rows.
    QMap<result_list, QList<kept_reply>> kept;
};
