#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace brivant {

// What one request of a sweep asks for.
struct sweep_request {
    QStringList pids; // each once
    QString ecu;      // whose answer is meant, by its header
    int frames = 0;   // behind so many the adapter waits no longer; 0: it waits as long as it is set to
    bool operator==(const sweep_request&) const = default;
};

// What a reply was good for.
struct request_outcome {
    int frames = 0;            // of the ECU that was meant
    bool is_whole = false;     // every PID has its value, and nothing else came
    bool has_values = false;   // one of them has
    bool is_unknown = false;   // the adapter does not know the request ("?")
    bool others_spoke = false; // an ECU that was not meant
    bool is_silent = false;    // not even the adapter said anything
};

// Which requests read the PIDs of a sweep in the fewest exchanges, and what is learnt of each answer: how
// many PIDs an ECU answers at once, and after how many frames the adapter need not wait any more. The first
// sweep asks for each alone, so that there is one before anything is tried.
class request_plan {
public:
    struct abilities {
        int most_pids = 1;         // in a request: 6, 3, 2 or 1
        bool counts = false;       // it ends a request behind as many frames as the request says
        bool addresses_one = true; // ECU alone
        bool operator==(const abilities&) const = default;
    };
    struct wanted {
        QString pid;
        QString ecu;
        bool may_be_joined = false; // with others of its ECU
        int every = 1;              // sweeps
    };

    request_plan() = default;
    request_plan(QList<wanted> its_pids, const abilities& its_adapter);

    // The requests of the next sweep, those of one ECU together; at least one where anything is wanted.
    QList<sweep_request> next_sweep();
    // What came of one of them.
    void answered(const sweep_request& request, const request_outcome& outcome);

    // What was learnt of the adapter: what all ECUs bear.
    abilities learnt() const;

private:
    struct learnt_count {
        int frames = 0;
        int times = 0;
    };
    struct group_size {
        int now = 0;    // PIDs a request
        int proven = 0; // up to so many were answered whole
        int doubt = 0;  // about a size that is proven
        int calm = 0;   // whole answers since it was made smaller
    };
    group_size& size_of(const QString& ecu);
    bool is_turn_of(const wanted& one, qsizetype place) const;
    QList<sweep_request> joined();
    void learn_of_sweep();
    int joinable(const QString& ecu) const;
    void learn_whole(const sweep_request& request, int frames);
    void make_smaller(const sweep_request& request, bool is_silenced);

    QList<wanted> pids;
    abilities adapter;
    qint64 sweeps = 0;
    QHash<QString, group_size> sizes;     // by ECU
    QHash<QString, learnt_count> counted; // by ECU and PIDs
    QHash<QString, int> failed;           // how often in turn
    int count_doubt = 0;
    QList<sweep_request> failed_alone; // of the sweep under way
    bool has_values = false;           // it
    QString last_ecu;                  // the adapter is turned to it
};

} // namespace brivant
