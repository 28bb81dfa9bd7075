#pragma once

#include "livedata/request_plan.h"
#include "livedata/sampling_talk.h"

namespace brivant {

// A run that asks as fast as the adapter and the car allow: several PIDs a request on CAN, one ECU addressed,
// the adapter told how many frames to wait for, and no blanks. What it changes at the adapter is noted with
// the link, to be put back. It never changes how frames flow, nor what the adapter keeps for good, and never
// asks before the answer is there.
class fast_sampling {
public:
    explicit fast_sampling(sampling_talk& its_car);
    ~fast_sampling() { car.adapter_learnt(plan.learnt()); } // also where the link is lost by it
    Q_DISABLE_COPY_MOVE(fast_sampling)

    // The adapter's own settings, before the first sweep.
    talk speed_up();
    // A sweep: the bodies of the columns that were asked for; the others keep what they hold.
    talk ask_sweep(QStringList& bodies);

private:
    talk ask(sweep_request request, QStringList& bodies);
    QList<int> columns_of(const sweep_request& request) const;
    bool is_turn_of(const sweep_request& request) const;
    bool is_missed(const sweep_request& request, const reply& came) const;
    void leave_out(const sweep_request& request, QStringList& bodies);
    talk turn_to(QString ecu);
    talk wait_as_usual();
    talk keep_pace();
    sent_command command_for(const sweep_request& request) const;
    // False when not all came, or more than that.
    bool take(const sweep_request& request, const reply& came, QStringList& bodies);
    request_outcome outcome_of(const sweep_request& request, const reply& came,
                               QMap<QString, QString>& answers) const;
    void note_pace(const sweep_request& request, const reply& came);

    sampling_talk& car;
    const bool on_can;
    const bool counts_frames; // the protocol lets it
    request_plan plan;
    QString turned_to;    // the ECU that alone is addressed, "" for all
    bool may_turn;        // an ECU can be addressed alone
    int others_spoke = 0; // replies with another one all the same
    bool waits_short = false;
    int pause_ms = 0; // between two requests
    int calm = 0;     // requests without trouble since it was made longer
    qint64 asked_us = 0;
};

} // namespace brivant
