#pragma once

#include "initialisation/step_machine.h"
#include "livedata/live_host.h"

// What the sampling machines have in common: the start that every run makes, one request for each PID, the
// answer of the ECU that was meant reduced to its data, where a value goes, and the end of a sweep.
//
// A column never gets another PID's value: what is taken is "41", the PID and data bytes, or "~".
class sampling_machine : public step_machine {
public:
    sampling_machine(operation_context& its_context, live_host& its_host);

    // The command in flight timed out: at step 1 the PID has no value in this sweep; before, it is asked once
    // more.
    virtual void redo();

protected:
    // True when the adapter must be initialised, or headers switched on, before the first request: that has
    // begun, and comes back to step 0.
    bool not_ready_to_ask();
    // Every entry but those of the program's own PIDs is answered by its ECU. Otherwise the run ends with a
    // text.
    bool all_supported();
    // Asks for the PID at this place of the set, or for any; step 1 handles the reply.
    void ask(int index);
    void ask_pid(const QString& pid);

    // The reply is "" although no time-out is being made good: the run has ended.
    bool nothing_came(const QString& reply);
    // The data of the ECU that was meant ("410D3C"), "~" for none. When that ECU is not among those that
    // answered, the reply is used as it arrived: its first message counts.
    QString data_of_reply(const QString& reply, const QString& pid, const QString& header) const;
    // The same for the PID at `cur_log_idx`.
    QString data_of_reply(const QString& reply) const;

    // The data goes into row `index` and its column, and the view is told.
    void take(int index, const QString& data);
    // The same for a row whose text and number are not those of the data.
    void output_item(int index, const QString& data);
    sample_row& row(int index) { return results.these_samples[index]; }
    // Text, largest and smallest number of row `index` by a reply.
    void work_current_log_item(const QString& reply, int index);
    void note_extremes(sample_row& its_row, double value);

    // Appends to the line of the sweep, and asks for the PID that follows; behind the last one the sweep
    // ends.
    void go_on(const QString& data);
    // A complete sweep: its line is stored when it is its turn, and the next one begins.
    void end_of_sweep(const QString& line);

    bool is_active() const { return run_.keep_logging; }
    int cur_log_idx() const { return run_.cur_log_idx; }

    live_host& host;
    live_results& results;
    sampling_run& run_;

private:
    void tell_silence(const QString& line);
    const obd_message* message_of_ecu(const QString& header) const;
    QString data_of_message(const obd_message& first) const;
};

// Puts a value into a column of the last row; index -1 begins a new row of "-1".
void add_item_to_log_vector(sample_matrix& vector, const QString& this_item_val, int this_idx);
// The PID that is asked for in the place of one of the program's own: boost is the manifold pressure.
QString requested_pid(const QString& pid);
