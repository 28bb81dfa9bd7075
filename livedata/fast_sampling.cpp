#include "livedata/fast_sampling.h"

#include "livedata/fast_requests.h"
#include "obd/pid_answers.h"
#include "obd/pid_lengths.h"
#include "obd/reply_text.h"

#include <algorithm>

namespace brivant {

namespace {

constexpr int unknown_rate = 10; // sweeps, of a PID that the car does not tell
constexpr int sure_of_others = 3;
// Behind the adapter's wait: an ECU on CAN answers within 50 ms. A frame that comes when the next request is
// under way would stand for its answer, and the next one would be late in turn.
constexpr int until_no_frame_comes_ms = 60;
constexpr int gentle_ms = 100;
constexpr int longest_pause_ms = 1000;
constexpr int shortest_pause_ms = 50;
constexpr int calm_requests = 50;
constexpr int busy = 0x21; // "busy, repeat request"

// Others of the sweep are worked out with it.
bool is_needed_each_time(const sampling_talk& car, const QString& pid) {
    const QString by = pid == QLatin1String("33") ? QStringLiteral("E5") : QStringLiteral("E4");
    return (pid == QLatin1String("33") || pid == QLatin1String("51")) &&
           std::any_of(car.results.these_samples.begin(), car.results.these_samples.end(),
                       [&](const sample_row& row) { return row.pid == by; });
}

// A PID without a length that holds for every car stands in a request of its own: what follows it is its
// data.
std::optional<QMap<QString, QString>> answers_to(const sweep_request& request, const QString& message) {
    const QString& pid = request.pids.first();
    if (pid_length(static_cast<int>(convertStr2Byte(pid))) > 0)
        return answers_in(message, request.pids);
    const QString answer = QStringLiteral("41") + pid;
    if (message.size() <= answer.size() || !message.startsWith(answer))
        return std::nullopt;
    return QMap<QString, QString>{{pid, message}};
}

QList<request_plan::wanted> wanted_by(const sampling_talk& car, bool on_can) {
    QList<request_plan::wanted> all;
    for (const sample_row& row : std::as_const(car.results.these_samples)) {
        if (is_worked_out(row.pid))
            continue;
        const QString pid = requested_pid(row.pid);
        const QString ecu = row.item.section(u'|', 1);
        const auto is_same = [&](const request_plan::wanted& one) {
            return one.pid == pid && one.ecu == ecu;
        };
        if (std::any_of(all.begin(), all.end(), is_same))
            continue;
        const int length = pid_length(static_cast<int>(convertStr2Byte(pid)));
        const bool is_told = car.tells(ecu, pid);
        all.append({pid, ecu, on_can && length > 0 && is_told,
                    !is_told                        ? unknown_rate
                    : is_needed_each_time(car, pid) ? 1
                                                    : car.every_so_many_sweeps(pid)});
    }
    return all;
}

} // namespace

fast_sampling::fast_sampling(sampling_talk& its_car)
    : car(its_car), on_can(is_can(car.link.adapter().cur_protocol()) && car.link.adapter().headers_shown()),
      counts_frames(!is_j1850(car.link.adapter().cur_protocol())),
      plan(wanted_by(car, on_can), car.abilities_of_adapter()),
      may_turn(on_can && car.abilities_of_adapter().addresses_one),
      pause_ms(car.speed() == sampling_speed::gentle ? gentle_ms : 0) {}

talk fast_sampling::speed_up() {
    co_await change_setting(car, QStringLiteral("AT S0"), QStringLiteral("AT S1"));
    const reply short_wait = co_await change_setting(car, QStringLiteral("AT AT2"), usual_wait);
    waits_short = !short_wait.is_none();
}

// An adapter that ends its wait too early is given its time again.
talk fast_sampling::wait_as_usual() {
    if (!std::exchange(waits_short, false))
        co_return;
    const reply told = co_await change_setting(car, usual_wait, usual_wait);
    if (told.is_none() && car.link.timeouts() > 0)
        throw link_lost{.status = QStringLiteral("The adapter has fallen silent")};
}

talk fast_sampling::turn_to(QString ecu) {
    const QString address = address_of(ecu);
    const QString to_all = QStringLiteral("AT SH ") + address_of_all(ecu);
    if (!may_turn && !std::exchange(turned_to, QString()).isEmpty())
        co_await change_setting(car, to_all, to_all);
    if (!may_turn || turned_to == ecu || address.isEmpty())
        co_return;
    const reply told = co_await change_setting(car, QStringLiteral("AT SH ") + address, to_all);
    may_turn = !told.is_none();
    turned_to = ecu;
}

talk fast_sampling::keep_pace() {
    const qint64 since_ms = (car.link.time_source().microseconds() - asked_us) / 1000;
    if (pause_ms > since_ms && asked_us > 0)
        co_await car.pause(pause_ms - static_cast<int>(since_ms));
    asked_us = car.link.time_source().microseconds();
}

talk fast_sampling::ask_sweep(QStringList& bodies) {
    const QList<sweep_request> requests = plan.next_sweep();
    for (const sweep_request& request : requests) {
        if (!is_turn_of(request)) {
            leave_out(request, bodies);
            continue;
        }
        co_await turn_to(request.ecu);
        co_await ask(request, bodies);
        car.check_the_run();
    }
}

sent_command fast_sampling::command_for(const sweep_request& request) const {
    const bool is_alone = may_turn && others_spoke == 0 && turned_to == request.ecu;
    const bool may_count = request.frames > 0 && counts_frames && (!on_can || is_alone);
    return fast_request(request.pids, may_count ? request.frames : 0);
}

talk fast_sampling::ask(sweep_request request, QStringList& bodies) {
    co_await keep_pace();
    car.begin_to_ask();
    const reply came = co_await car.send(command_for(request));
    const bool was_whole = take(request, came, bodies);
    note_pace(request, came);
    if (came.is_none() && car.link.timeouts() > 0) {
        // A reply that is still on its way stands before the answer to another command, and is dropped there.
        waits_short = true;
        co_await wait_as_usual();
    } else if (is_missed(request, came)) {
        co_await wait_as_usual();
    }
    if (!was_whole)
        co_await car.pause(until_no_frame_comes_ms);
}

// Nothing came of PIDs that the ECU says it has.
bool fast_sampling::is_missed(const sweep_request& request, const reply& came) const {
    return came.holds_nothing() &&
           std::all_of(request.pids.begin(), request.pids.end(),
                       [&](const QString& pid) { return car.tells(request.ecu, pid); });
}

QList<int> fast_sampling::columns_of(const sweep_request& request) const {
    QList<int> columns;
    for (int column = 0; column < car.columns(); ++column) {
        const sample_row& row = car.row(column);
        if (!is_worked_out(row.pid) && request.pids.contains(requested_pid(row.pid)) &&
            row.item.section(u'|', 1) == request.ecu)
            columns += column;
    }
    return columns;
}

// One that the car refuses is asked for seldom.
bool fast_sampling::is_turn_of(const sweep_request& request) const {
    const QList<int> columns = columns_of(request);
    return request.pids.size() > 1 || columns.isEmpty() || car.is_turn_of(columns.first());
}

void fast_sampling::leave_out(const sweep_request& request, QStringList& bodies) {
    for (const int column : columns_of(request)) {
        bodies[column] = no_reply;
        car.take(column, no_reply);
    }
}

// What the ECU that was meant told of each PID. A PID that stands in two messages is not taken: one of them
// is late, and nothing tells which.
request_outcome fast_sampling::outcome_of(const sweep_request& request, const reply& came,
                                          QMap<QString, QString>& answers) const {
    request_outcome outcome{.is_unknown = came.raw().text.contains(u'?')};
    outcome.is_silent = came.is_none() && came.raw().text.isEmpty();
    if (outcome.is_silent)
        return outcome;
    const reply said(came.raw());
    outcome.others_spoke = std::any_of(said.ecus().begin(), said.ecus().end(), [&](const ecu_said& one) {
        return one.header != request.ecu && car.tells(one.header, request.pids.first());
    });
    const ecu_said* ecu = said.ecu(request.ecu);
    if (!ecu)
        return outcome;
    outcome.frames = static_cast<int>(ecu->bodies.size());
    bool is_odd = false;
    QStringList twice;
    for (const QString& message : whole_messages(*ecu)) {
        const auto told = answers_to(request, message);
        is_odd = is_odd || !told;
        for (const auto& [pid, body] : (told ? *told : QMap<QString, QString>()).asKeyValueRange()) {
            if (answers.contains(pid))
                twice += pid;
            answers.insert(pid, body);
        }
    }
    for (const QString& pid : std::as_const(twice))
        answers.remove(pid);
    outcome.has_values = !answers.isEmpty();
    outcome.is_whole = answers.size() == request.pids.size() && !is_odd && twice.isEmpty();
    return outcome;
}

bool fast_sampling::take(const sweep_request& request, const reply& came, QStringList& bodies) {
    QMap<QString, QString> answers;
    request_outcome outcome;
    const QString& first = request.pids.first();
    if (on_can) {
        outcome = outcome_of(request, came, answers);
    } else if (const QString data = car.data_of_reply(came, first, request.ecu); data != no_reply) {
        answers.insert(first, data);
        outcome = {.frames = static_cast<int>(came.lines().size()), .is_whole = true, .has_values = true};
    } else {
        outcome.is_unknown = came.raw().text.contains(u'?');
    }
    if (outcome.others_spoke && turned_to == request.ecu && ++others_spoke >= sure_of_others)
        may_turn = false; // the adapter only said OK to it
    plan.answered(request, outcome);
    for (const int column : columns_of(request)) {
        const QString pid = requested_pid(car.row(column).pid);
        bodies[column] = car.came_for(column, answers.value(pid, no_reply), came);
        car.take(column, bodies[column]);
        car.tell_sensor(column);
    }
    return outcome.is_whole;
}

// A car that is busy, or does not answer, is asked less at once, and more again when it has kept up.
void fast_sampling::note_pace(const sweep_request& request, const reply& came) {
    const reply said(came.raw());
    const ecu_said* ecu = said.ecu(request.ecu);
    const auto refused = ecu ? ecu->refused() : std::nullopt;
    const int least_ms = car.speed() == sampling_speed::gentle ? gentle_ms : 0;
    if ((refused && refused->code == busy) || is_missed(request, came)) {
        pause_ms = std::clamp(2 * pause_ms, shortest_pause_ms, longest_pause_ms);
        calm = 0;
    } else if (++calm >= calm_requests) {
        calm = 0;
        pause_ms = pause_ms / 2 >= std::max(least_ms, shortest_pause_ms) ? pause_ms / 2 : least_ms;
    }
}

} // namespace brivant
