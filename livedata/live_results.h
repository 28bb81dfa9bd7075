#pragma once

#include "charts/sample_matrix.h"
#include "formats/run_values.h"
#include "link/exchange.h"
#include "livedata/store_trigger.h"
#include "livedata/sweep_moments.h"
#include "livedata/sweep_times.h"
#include "obd/pid_catalogue.h"

#include <QList>
#include <QStringList>

namespace brivant {

// One PID of the sample set as the view shows it.
struct sample_row {
    QString item;  // its entry of the set: "0C", or with the ECU "0C|7E8"
    QString pid;   // "0C"
    QString name;  // "Engine RPM"
    QString units; // "RPM", or "N/A"

    QString value;                       // the latest value as text, "~" for none; "" before the first
    QString other_value;                 // what the other reading says, "" where both say the same
    double latest = qQNaN();             // its number; NaN for none
    QString max = QStringLiteral("max"); // the largest number of the run as text, once there is one
    QString min = QStringLiteral("min"); // the smallest
    int refusals = 0;                    // how often in turn the car has refused it
};

// How long the requests of a run take.
struct exchange_pace {
    qint64 answered = 0;
    qint64 first_us = 0; // until the first byte of the answers, all together
    qint64 whole_us = 0; // until their prompts

    void note(const exchange_moments& when) {
        if (when.first_byte == 0)
            return;
        ++answered;
        first_us += when.first_byte - when.asked;
        whole_us += when.last_byte - when.asked;
    }
    double first_ms() const { return mean_ms(first_us); }
    double whole_ms() const { return mean_ms(whole_us); }

private:
    double mean_ms(qint64 all_us) const {
        return answered == 0 ? 0 : static_cast<double>(all_us) / 1000 / static_cast<double>(answered);
    }
};

// What the sampling runs have read, kept until the next run or choice, also while another screen is shown.
struct live_results {
    // `value_of_body`: see sample_matrix.
    explicit live_results(sample_matrix::value_function value_of_body,
                          qsizetype most_bytes = sample_matrix::default_most_bytes)
        : cur_log_points(std::move(value_of_body), most_bytes) {}

    int mode = 0;                  // op_log_run, op_fuel, op_boost or op_o2_layout; 0 before the first choice
    int veh_id = -1;               // the vehicle
    bool metric = false;           // the units in which the rows read
    bool by_standard = false;      // and the reading: see second_value.h
    QStringList pid_logitems_list; // the sample set: "0D", or with the ECU "0D|7E8"
    QList<sample_row> these_samples;
    // One row a sweep, one column a PID of the set; the last row is the sweep under way.
    sample_matrix cur_log_points;
    bool needs_sweeps = false; // some numbers need the whole sweep: see work_out_sweeps
    sweep_times times;
    exchange_pace pace;
    sweep_moments moments;
    std::optional<geo_position> position; // of the latest sweep, where it is known
    QList<timed_mark> marks;              // of the run, stored or not, in the order of their time

    // The column was asked for in the sweep that is complete: a run need not ask for all each time.
    bool was_asked(int column) const {
        return cur_log_points.body(cur_log_points.rows() - 2, column) != QLatin1String("-1");
    }

    qint64 sample_cnt = 0;                // complete sweeps of the run that have a value
    int log_sample_cnt = 0;               // of them stored
    std::optional<store_trigger> trigger; // by which the next runs are stored
    bool is_stored = false;               // the run has, or had, a log in the database
    int log_id = -1;                      // its number there
    int gauge_2_idx = 1;                  // the PID of the second gauge, by its place in the set

    int o2_mask = 0; // the oxygen sensors, by the map of PID 13 or 1D; 0 while not known
    o2_banks o2_order = o2_banks::two;
    QString o2_header; // the ECU that told
};

} // namespace brivant
