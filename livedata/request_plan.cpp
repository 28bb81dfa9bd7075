#include "livedata/request_plan.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int sure_count = 3;   // equal ones
constexpr int sure_failure = 3; // of the same request, one after the other
constexpr int a_failure = 4;    // weighs as many whole answers
constexpr int most_doubt = 12;
constexpr int calm_answers = 200;        // behind which a size that was answered is tried again
constexpr qsizetype most_counted = 1000; // rates of their own make ever other requests
constexpr int most_frames = 15;          // one hexadecimal digit

int next_smaller(qsizetype size) {
    return size > 3 ? 3 : size > 2 ? 2 : 1;
}

QString key_of(const sweep_request& request) {
    return request.ecu + u'|' + request.pids.join(u',');
}

} // namespace

request_plan::request_plan(QList<wanted> its_pids, const abilities& its_adapter)
    : pids(std::move(its_pids)), adapter(its_adapter) {}

request_plan::group_size& request_plan::size_of(const QString& ecu) {
    group_size& size = sizes[ecu];
    if (size.now == 0)
        size.now = adapter.most_pids;
    return size;
}

// Those that are not asked in each sweep take turns, so that no sweep is much longer than the others.
bool request_plan::is_turn_of(const wanted& one, qsizetype place) const {
    return one.every <= 1 || sweeps == 0 || (sweeps + place) % one.every == 0;
}

QList<sweep_request> request_plan::next_sweep() {
    learn_of_sweep();
    QList<sweep_request> requests;
    while (requests.isEmpty() && !pids.isEmpty()) {
        requests = joined();
        ++sweeps;
    }
    for (sweep_request& request : requests) {
        const learnt_count known = counted.value(key_of(request));
        request.frames = adapter.counts && known.times >= sure_count ? known.frames : 0;
    }
    // First those of the ECU that the adapter is turned to.
    std::stable_sort(
        requests.begin(), requests.end(), [this](const sweep_request& one, const sweep_request& other) {
            return std::pair(one.ecu != last_ecu, one.ecu) < std::pair(other.ecu != last_ecu, other.ecu);
        });
    if (!requests.isEmpty())
        last_ecu = requests.last().ecu;
    return requests;
}

QList<sweep_request> request_plan::joined() {
    QList<sweep_request> requests;
    QHash<QString, qsizetype> open; // an ECU's request that has room
    for (qsizetype place = 0; place < pids.size(); ++place) {
        const wanted& one = pids[place];
        if (!is_turn_of(one, place))
            continue;
        const qsizetype at = one.may_be_joined && sweeps > 0 ? open.value(one.ecu, -1) : -1;
        if (at >= 0 && requests[at].pids.size() < size_of(one.ecu).now) {
            requests[at].pids += one.pid;
            continue;
        }
        if (one.may_be_joined)
            open[one.ecu] = requests.size();
        requests.append({{one.pid}, one.ecu});
    }
    return requests;
}

void request_plan::answered(const sweep_request& request, const request_outcome& outcome) {
    has_values = has_values || outcome.has_values;
    if (outcome.is_whole)
        return learn_whole(request, outcome.frames);
    counted.remove(key_of(request));
    if (request.frames > 0 && (outcome.is_unknown || (count_doubt += a_failure) > most_doubt))
        adapter.counts = false;
    if (request.frames > 0 && outcome.is_unknown)
        return; // it was the digit
    if (request.pids.size() > 1)
        make_smaller(request, outcome.is_silent);
    else
        failed_alone += request;
}

void request_plan::learn_whole(const sweep_request& request, int frames) {
    failed.remove(key_of(request));
    if (counted.size() >= most_counted)
        counted.clear();
    learnt_count& known = counted[key_of(request)];
    known.times = known.frames == frames ? known.times + 1 : 1;
    known.frames = frames;
    if (frames > most_frames)
        known = {};
    if (request.frames > 0)
        count_doubt = std::max(0, count_doubt - 1);
    group_size& size = size_of(request.ecu);
    const auto size_here = static_cast<int>(request.pids.size());
    size.proven = std::max(size.proven, size_here == joinable(request.ecu) ? size.now : size_here);
    size.doubt = std::max(0, size.doubt - 1);
    if (size.now < size.proven && ++size.calm >= calm_answers) {
        size.now = size.proven;
        size.calm = 0;
    }
}

// How many PIDs of an ECU may stand in one request.
int request_plan::joinable(const QString& ecu) const {
    return static_cast<int>(std::count_if(
        pids.begin(), pids.end(), [&](const wanted& one) { return one.ecu == ecu && one.may_be_joined; }));
}

// A size that was never answered is not tried again; one that a request silences the adapter with, not with
// nearly as many. One that was answered may have met a disturbance.
void request_plan::make_smaller(const sweep_request& request, bool is_silenced) {
    group_size& size = size_of(request.ecu);
    const auto asked = static_cast<int>(request.pids.size());
    const int smaller = next_smaller(asked);
    if (++failed[key_of(request)] >= sure_failure) { // others of the size may come whole: these do not
        failed.clear();
        size = {std::min(size.now, smaller), std::min(size.proven, smaller), 0, 0};
    } else if (asked > size.proven)
        size.now = std::min(size.now, is_silenced ? next_smaller(smaller) : smaller);
    else if ((size.doubt += a_failure) > most_doubt)
        size = {std::min(size.now, smaller), size.proven, 0, 0};
}

// Where nothing comes at all the car is to blame, and not a size that it had answered. A PID that fails alone
// while others come was to blame for the requests that it stood in.
void request_plan::learn_of_sweep() {
    const QList<sweep_request> alone = std::exchange(failed_alone, {});
    if (!std::exchange(has_values, false)) {
        failed.clear();
        for (auto size = sizes.begin(); size != sizes.end(); ++size)
            size->now = std::max(size->now, size->proven);
        return;
    }
    for (const sweep_request& request : alone) {
        size_of(request.ecu).now = adapter.most_pids;
        for (wanted& one : pids)
            if (one.ecu == request.ecu && one.pid == request.pids.first())
                one.may_be_joined = false;
    }
}

request_plan::abilities request_plan::learnt() const {
    abilities so_far = adapter;
    for (const group_size& size : sizes)
        so_far.most_pids = std::min(so_far.most_pids, std::max(size.now, size.proven));
    return so_far;
}

} // namespace brivant
