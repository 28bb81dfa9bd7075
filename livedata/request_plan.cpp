#include "livedata/request_plan.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int sure_count = 3; // equal ones
constexpr int most_wrong_counts = 3;
constexpr int most_frames = 15; // one hexadecimal digit

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
        const qsizetype at = one.may_be_joined ? open.value(one.ecu, -1) : -1;
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
    learnt_count& known = counted[key_of(request)];
    if (outcome.is_whole) {
        group_size& size = size_of(request.ecu);
        const auto size_here = static_cast<int>(request.pids.size());
        size.proven = std::max(size.proven, size_here == joinable(request.ecu) ? size.now : size_here);
        known.times = known.frames == outcome.frames ? known.times + 1 : 1;
        known.frames = outcome.frames;
        if (outcome.frames > most_frames)
            known = {};
        return;
    }
    known = {};
    if (request.frames > 0 && (outcome.is_unknown || ++wrong_counts >= most_wrong_counts))
        adapter.counts = false;
    if (request.frames > 0 && outcome.is_unknown)
        return; // it was the digit
    if (request.pids.size() > 1)
        make_smaller(request);
    else
        failed_alone += request;
}

// How many PIDs of an ECU may stand in one request.
int request_plan::joinable(const QString& ecu) const {
    return static_cast<int>(std::count_if(
        pids.begin(), pids.end(), [&](const wanted& one) { return one.ecu == ecu && one.may_be_joined; }));
}

void request_plan::make_smaller(const sweep_request& request) {
    group_size& size = size_of(request.ecu);
    size.now = std::min(size.now, next_smaller(request.pids.size()));
}

// Where nothing comes at all the car is to blame, and not a size that it had answered. A PID that fails alone
// while others come was to blame for the requests that it stood in.
void request_plan::learn_of_sweep() {
    const QList<sweep_request> failed = std::exchange(failed_alone, {});
    if (!std::exchange(has_values, false)) {
        for (auto size = sizes.begin(); size != sizes.end(); ++size)
            size->now = std::max(size->now, size->proven);
        return;
    }
    for (const sweep_request& request : failed) {
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
