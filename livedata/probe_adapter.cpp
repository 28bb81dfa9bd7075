#include "livedata/probe_adapter.h"

#include "livedata/fast_requests.h"
#include "livedata/probe_answers.h"
#include "obd/pid_answers.h"
#include "obd/pid_lengths.h"
#include "obd/reply_text.h"
#include "operations/put_back_settings.h"

#include <QSet>
#include <algorithm>

namespace brivant {

namespace {

using effect = adapter_passport::effect;

constexpr int round_trips = 5;
constexpr int requests_of_a_half = 10; // of the 20 as the adapter is set up, and without blanks
constexpr int requests_of_a_try = 8;
constexpr int requests_of_a_group = 3; // whose frames are counted
constexpr int most_pids = 6;
constexpr int gentle_ms = 100;
constexpr int until_no_frame_comes_ms = 60;
constexpr double time_out_ms = 1000;

// The adapter answers nothing any more, or has reset itself, of which nothing is learnt.
struct broken_off {
    bool is_silent = false;
};

class adapter_probe {
public:
    explicit adapter_probe(sampling_talk& its_car)
        : car(its_car), engine(car.engine_ecu()), protocol(car.link.adapter().cur_protocol()),
          tells_ecus(car.link.adapter().headers_shown() && protocol > 0),
          on_can(is_can(protocol) && tells_ecus) {
        for (const QString& pid : std::as_const(engine.pidSet)) {
            const int number = static_cast<int>(convertStr2Byte(pid));
            if (pid_length(number) > 0 && number % 0x20 != 0 && number > 2)
                usable += pid;
        }
        const qsizetype speed = usable.indexOf(QStringLiteral("0C"));
        if (speed > 0)
            usable.move(speed, 0);
    }

    talk examine();

private:
    talk find_out();
    talk time_round_trip();
    talk time_requests();
    talk try_shorter_wait();
    talk try_addressing();
    talk try_count();
    talk find_pids_that_answer();
    talk try_groups();
    talk try_group(qsizetype size);
    void note_best(const probe_answers& best);
    void keep();
    talk ask(int times, probe_answers& into);
    talk ask_once(probe_answers& into);
    probe_answer taken_apart(const reply& came) const;
    void check_adapter() const {
        if (!car.link.adapter().adapter_ready())
            throw broken_off();
    }
    // Of what was changed: on when the prompt comes, as against the latest answers. One may be lost by the
    // way.
    effect effect_of(const probe_answers& now) const {
        return unanswered(now) > 1 ? effect::fails : is_sooner(now, latest) ? effect::shown : effect::none;
    }

    sampling_talk& car;
    adapter_passport found;
    const obd_group engine;
    const int protocol;
    const bool tells_ecus;
    const bool on_can;
    QStringList usable;    // PIDs that it tells
    QStringList asked;     // PIDs of the next request
    int frames = 0;        // that it says
    probe_answers latest;  // of the last way to ask for one PID that is known to be good
    QStringList answering; // PIDs that were just answered, at most six
    bool is_known = false;
};

probe_answer adapter_probe::taken_apart(const reply& came) const {
    probe_answer told;
    const exchange_moments& when = car.link.moments();
    told.first_ms = static_cast<double>(when.first_byte - when.asked) / 1000;
    told.whole_ms = static_cast<double>(when.last_byte - when.asked) / 1000;
    told.bytes = when.bytes;
    if (when.first_byte == 0)
        told.first_ms = told.whole_ms = time_out_ms;
    if (came.holds_nothing())
        return told;
    const reply said(came.raw());
    told.lines = static_cast<int>(said.lines().size());
    for (const ecu_said& one : said.ecus())
        told.ecus += one.header;
    const ecu_said* ecu = said.ecu(engine.header);
    if (!on_can) {
        told.frames = told.lines;
        told.is_whole = car.data_of_reply(came, asked.first(), engine.header) != no_reply;
        told.values = told.is_whole ? 1 : 0;
        return told;
    }
    const QStringList messages = ecu ? whole_messages(*ecu) : QStringList();
    const auto values = messages.size() == 1 ? answers_in(messages.first(), asked) : std::nullopt;
    told.frames = ecu ? static_cast<int>(ecu->bodies.size()) : 0;
    told.is_whole = values && values->size() == asked.size();
    told.values = told.is_whole ? static_cast<int>(asked.size()) : 0;
    return told;
}

talk adapter_probe::ask_once(probe_answers& into) {
    if (car.speed() == sampling_speed::gentle)
        co_await car.pause(gentle_ms);
    const reply came = co_await car.send(fast_request(asked, frames));
    into += taken_apart(came);
    check_adapter();
    if (came.is_none() && car.link.timeouts() > 0) {
        // What still comes stands before the answer to another command.
        co_await change_setting(car, usual_wait, usual_wait);
        if (car.link.timeouts() > 0)
            throw broken_off{true};
    }
    if (!into.last().is_whole)
        co_await car.pause(until_no_frame_comes_ms);
}

talk adapter_probe::ask(int times, probe_answers& into) {
    for (int i = 0; i < times; ++i)
        co_await ask_once(into);
}

talk adapter_probe::time_round_trip() {
    QList<double> times;
    for (int i = 0; i < round_trips; ++i) {
        sent_command command = command_of(QStringLiteral("AT RV\r"), QStringLiteral("V|."), false);
        command.why = sent_command::purpose::on_its_own;
        command.is_asked_again = false;
        command.is_sent_once = true;
        co_await car.send(command);
        const exchange_moments& when = car.link.moments();
        if (when.first_byte > 0)
            times += static_cast<double>(when.first_byte - when.asked) / 1000;
        check_adapter();
    }
    found.command_ms = median(times);
}

// As the adapter is set up, and without blanks.
talk adapter_probe::time_requests() {
    probe_answers plain;
    co_await ask(requests_of_a_half, plain);
    co_await change_setting(car, QStringLiteral("AT S0"), QStringLiteral("AT S1"));
    co_await ask(requests_of_a_half, latest);
    found.no_blanks = median_of(latest, &probe_answer::bytes) < median_of(plain, &probe_answer::bytes)
                          ? effect::shown
                          : effect::none;
    found.plain_ms = median_of(plain, &probe_answer::whole_ms);
    const probe_answers all = plain + latest;
    found.unanswered = unanswered(all);
    QSet<QString> ecus;
    for (const probe_answer& one : all)
        ecus += QSet<QString>(one.ecus.begin(), one.ecus.end());
    found.ecus = static_cast<int>(ecus.size());
}

talk adapter_probe::try_shorter_wait() {
    co_await change_setting(car, QStringLiteral("AT AT2"), usual_wait);
    found.waits_shorter = effect::fails;
    probe_answers now;
    co_await ask(requests_of_a_try, now);
    found.waits_shorter = effect_of(now);
    if (found.waits_shorter == effect::fails)
        co_await change_setting(car, usual_wait, usual_wait);
    else
        latest = now;
}

talk adapter_probe::try_addressing() {
    const QString address = on_can ? address_of(engine.header) : QString();
    if (address.isEmpty())
        co_return;
    const QString all = QStringLiteral("AT SH ") + address_of_all(engine.header);
    co_await change_setting(car, QStringLiteral("AT SH ") + address, all);
    found.addresses_one = effect::fails;
    probe_answers now;
    co_await ask(requests_of_a_try, now);
    const bool is_alone =
        std::all_of(now.begin(), now.end(), [](const probe_answer& one) { return one.ecus.size() <= 1; });
    if (unanswered(now) <= 1)
        found.addresses_one = !is_alone ? effect::none : found.ecus > 1 ? effect::shown : effect::untried;
    if (is_alone && unanswered(now) <= 1)
        latest = now;
    else
        co_await change_setting(car, all, all);
}

// Only where nothing else answers can the digit be told from a wait that ends too early.
talk adapter_probe::try_count() {
    const int count = latest.last().frames;
    const bool is_steady =
        count > 0 && std::all_of(latest.end() - 3, latest.end(), [&](const probe_answer& one) {
            return one.is_whole && one.frames == count && (!on_can || one.lines == count);
        });
    if (is_j1850(protocol) || !is_steady)
        co_return;
    frames = count;
    found.counts = effect::fails;
    probe_answers now;
    co_await ask(requests_of_a_try, now);
    found.counts = effect_of(now);
    if (found.counts == effect::shown)
        latest = now;
    else
        frames = 0;
}

talk adapter_probe::find_pids_that_answer() {
    for (qsizetype i = 0; i < usable.size() && answering.size() < most_pids; ++i) {
        asked = {usable[i]};
        probe_answers now;
        co_await ask_once(now);
        if (now.last().is_whole)
            answering += usable[i];
    }
}

// Small ones first: an adapter that hangs does so once, and what it can do is known by then.
talk adapter_probe::try_groups() {
    co_await find_pids_that_answer();
    if (answering.size() < 2)
        co_return;
    const int one_counted = std::exchange(frames, 0);
    found.most_pids = 1;
    const QList<qsizetype> sizes{2, 3, answering.size()};
    for (const qsizetype size : sizes)
        if (found.too_many == 0 && size <= answering.size() && size > found.most_pids)
            co_await try_group(size);
    const auto is_last = [&](const probe_answer& one) { return one.frames == latest.last().frames; };
    asked = answering.first(found.most_pids);
    if (one_counted > 0 && std::all_of(latest.begin(), latest.end(), is_last))
        frames = latest.last().frames;
}

talk adapter_probe::try_group(qsizetype size) {
    asked = answering.first(size);
    found.too_many = static_cast<int>(size);
    found.hangs = true;
    probe_answers now;
    for (int i = 0; i < requests_of_a_group + unanswered(now); ++i) {
        co_await ask_once(now);
        found.hangs = now.last().bytes == 0;
        if (found.hangs || unanswered(now) > 1)
            co_return;
    }
    found.too_many = 0;
    found.most_pids = static_cast<int>(size);
    latest = now;
}

// The bytes of the request take their time on the line, too.
void adapter_probe::note_best(const probe_answers& best) {
    double took_ms = 0, values = 0, bytes = 0;
    for (const probe_answer& one : best) {
        took_ms += one.whole_ms;
        values += one.values;
        bytes += static_cast<double>(one.bytes);
    }
    found.values_a_second = took_ms > 0 ? values * 1000 / took_ms : 0;
    found.answer_ms = median_of(best, &probe_answer::first_ms);
    found.rest_ms = median_of(best, &probe_answer::tail_ms);
    if (frames > 0 && bytes > 0) {
        const auto of_request = static_cast<double>(fast_request(asked, frames).text.size());
        const double out_ms = found.rest_ms * of_request * static_cast<double>(best.size()) / bytes;
        found.answer_ms = std::max(0.0, found.answer_ms - out_ms);
        found.rest_ms += out_ms;
    }
}

talk adapter_probe::find_out() {
    co_await time_round_trip();
    co_await time_requests();
    is_known = found.unanswered <= requests_of_a_half / 2;
    if (!is_known)
        co_return;
    co_await try_shorter_wait();
    co_await try_addressing();
    co_await try_count();
    if (on_can)
        co_await try_groups();
    probe_answers best;
    co_await ask(requests_of_a_try, best);
    latest = best;
}

talk adapter_probe::examine() {
    if (usable.isEmpty())
        co_return;
    car.show(QStringLiteral("Finding out what the adapter can do: once, some seconds"));
    asked = {usable.first()};
    std::optional<broken_off> end;
    try {
        co_await find_out();
    } catch (const broken_off& early) {
        end = early;
    }
    if (is_known && (!end || end->is_silent))
        keep();
    if (!end) {
        co_await put_back_settings(car);
        co_return;
    }
    car.begin_anew();
    const link_lost why{
        .status = end->is_silent ? QStringLiteral("The adapter fell silent at what it was asked: the link is "
                                                  "opened again, and it is not asked so any more")
                                 : QStringLiteral("The adapter has reset itself: it is set up again")};
    co_await car.again(why);
    co_await car.ready_to_ask(QString());
}

void adapter_probe::keep() {
    note_best(latest);
    found.address = car.link.place().address();
    found.probed = QDate::currentDate();
    car.keep_passport(found);
}

} // namespace

talk probe_adapter(sampling_talk& car) {
    adapter_probe probe(car);
    co_await probe.examine();
}

} // namespace brivant
