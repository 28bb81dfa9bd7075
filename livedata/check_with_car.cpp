#include "livedata/fast_requests.h"
#include "livedata/link_check.h"
#include "livedata/probe_adapter.h"
#include "livedata/probe_answers.h"
#include "obd/reply_text.h"
#include "obd/supported_pids.h"
#include "operations/put_back_settings.h"

#include <QSet>
#include <algorithm>

namespace brivant {

namespace {

constexpr int requests_for_losses = 500;
constexpr qint64 losses_us = 60'000'000;
constexpr int until_no_frame_comes_ms = 60;
constexpr int told_every = 10;
constexpr int most_monitors = 64;
constexpr int tries_for_a_long_answer = 3;
constexpr unsigned group_size = 0x20;
constexpr unsigned last_group = 0xE0;
constexpr int requests_of_a_try = 3;
constexpr double clear_ms = 100; // of the two waits, which are 300 ms apart

// --- long answers ------------------------------------------------------------------------------------------

// ISO 15765-2: the length in a first frame; else as much as came.
int announced_by(const ecu_said& ecu, int came) {
    const QString first = ecu.bodies.value(0);
    return first.startsWith(u'1') && is_hex(first.mid(1, 3)) && first.size() > 3
               ? static_cast<int>(convertStr2Byte(QStringView(first).mid(1, 3)))
               : came;
}

check_findings::long_answer longest_in(const reply& came, const QString& request) {
    check_findings::long_answer longest{.request = request};
    const reply said(came.raw());
    if (said.no_data() || said.refused_by_adapter())
        return longest;
    for (const ecu_said& ecu : said.ecus()) {
        const auto bytes = static_cast<int>(ecu.digits_received() / 2);
        const int announced = announced_by(ecu, bytes);
        if (announced > longest.announced)
            longest = {request, announced, ecu.is_whole() ? announced : std::min(bytes, announced)};
    }
    return longest;
}

// Again, where it does not come whole: noise is no limit.
talk ask_long(link_check& car, QString request, reply& came) {
    check_findings::long_answer longest;
    for (int tries = 0; tries < tries_for_a_long_answer; ++tries) {
        co_await car.ask_car(request, came);
        longest = longest_in(came, request);
        if (longest.came == longest.announced)
            break;
        co_await car.pause(until_no_frame_comes_ms);
    }
    if (longest.came < longest.announced)
        car.found.cut += longest;
    else if (longest.announced > car.found.longest.announced)
        car.found.longest = longest;
}

talk find_monitors(link_check& car, QStringList& monitors) {
    obd_groups ecus;
    for (unsigned group = 0; group <= last_group; group += group_size) {
        if (group > 0 && !is_map_announced(ecus, group))
            break;
        const QString request = QStringLiteral("06") + convertByte2HexStr(group);
        reply came;
        co_await ask_long(car, request, came);
        if (came.holds_nothing())
            break;
        const QString answer = positive_reply_of(request);
        add_supported_pids(ecus, came, QString(), answer, answer.size(), group);
    }
    for (const obd_group& ecu : std::as_const(ecus))
        monitors += ecu.pidSet;
    monitors.removeIf([](const QString& id) { return convertStr2Byte(id) % group_size == 0; });
    monitors.removeDuplicates();
    monitors = monitors.mid(0, most_monitors);
}

// --- losses ------------------------------------------------------------------------------------------------

enum class outcome { good, unanswered, garbled, wrong, doubled };

bool is_notice(const QString& line) {
    return line.isEmpty() || is_hex(line) || line.startsWith(QLatin1String("BUSINIT"));
}

// `heard`: the ECUs that have answered to the PID so far.
outcome outcome_of(const reply& came, const QString& pid, QSet<QString>& heard) {
    const reply said(came.raw());
    const QString& text = said.text();
    if (text.isEmpty() || said.no_data() || said.is_none())
        return outcome::unanswered;
    const QStringList lines = text.split(u'\r');
    if (!std::all_of(lines.begin(), lines.end(), is_notice))
        return outcome::garbled;
    const QString answer = QStringLiteral("41") + pid;
    if (!said.headers_shown() || said.ecus().isEmpty())
        return said.lines().value(0).startsWith(answer) ? outcome::good : outcome::wrong;
    outcome what = outcome::good;
    QSet<QString> missing = heard;
    for (const ecu_said& ecu : said.ecus()) {
        missing.remove(ecu.header);
        if (ecu.refused())
            continue;
        if (!ecu.is_whole())
            what = outcome::garbled;
        else if (!ecu.data.startsWith(answer))
            what = outcome::wrong;
        else if (ecu.bodies.size() > 1)
            what = outcome::doubled;
        else
            heard += ecu.header;
    }
    return what == outcome::good && !missing.isEmpty() ? outcome::unanswered : what;
}

void count(check_findings& found, outcome what) {
    ++found.requests;
    switch (what) {
    case outcome::unanswered: ++found.unanswered; break;
    case outcome::garbled: ++found.garbled; break;
    case outcome::wrong: ++found.wrong; break;
    case outcome::doubled: ++found.doubled; break;
    default: break;
    }
}

// The engine speed, where the car tells it.
QString usual_pid(const obd_group& engine) {
    const QString speed = QStringLiteral("0C");
    return engine.pidSet.isEmpty() || engine.pidSet.contains(speed) ? speed : engine.pidSet.first();
}

// --- settings ----------------------------------------------------------------------------------------------

struct few_answers {
    QList<double> whole_ms;
    QSet<QString> ecus; // of those that were answered
    int unanswered = 0;
};

talk ask_a_few(link_check& car, few_answers& came) {
    const QString pid = usual_pid(car.engine_ecu());
    for (int i = 0; i < requests_of_a_try; ++i) {
        reply told;
        co_await car.ask_car(QStringLiteral("01") + pid, told);
        const exchange_moments& when = car.link.moments();
        came.whole_ms += static_cast<double>(when.last_byte - when.asked) / 1000;
        if (QSet<QString> alone; outcome_of(told, pid, alone) != outcome::good)
            ++came.unanswered;
        else
            came.ecus += alone;
    }
}

using effect = adapter_passport::effect;

talk check_wait(link_check& car) {
    const QString usual = QStringLiteral("AT ST 32");
    co_await change_setting(car, QStringLiteral("AT AT0"), usual_wait);
    co_await change_setting(car, QStringLiteral("AT ST 19"), usual);
    few_answers soon;
    co_await ask_a_few(car, soon);
    co_await change_setting(car, QStringLiteral("AT ST 64"), usual);
    few_answers late;
    co_await ask_a_few(car, late);
    const bool is_waiting = median(late.whole_ms) > clear_ms; // else there is no wait to be changed
    if (is_waiting && soon.unanswered + late.unanswered <= 1)
        car.found.waits =
            median(late.whole_ms) > median(soon.whole_ms) + clear_ms ? effect::shown : effect::none;
    else if (late.unanswered > 1)
        car.found.waits = effect::fails;
    co_await put_back_settings(car);
}

talk check_filter(link_check& car) {
    const QString header = car.engine_ecu().header;
    few_answers all;
    co_await ask_a_few(car, all);
    if (address_of(header).isEmpty() || all.ecus.size() < 2 || all.unanswered > 0)
        co_return;
    co_await change_setting(car, QStringLiteral("AT CRA ") + header, QStringLiteral("AT AR"));
    few_answers one;
    co_await ask_a_few(car, one);
    car.found.filters = one.unanswered > 1    ? effect::fails
                        : one.ecus.size() > 1 ? effect::none
                                              : effect::shown;
    co_await put_back_settings(car);
}

} // namespace

talk check_long_answers(link_check& car) {
    if (!car.link.adapter().headers_shown())
        co_return;
    QStringList requests{QStringLiteral("0902"), QStringLiteral("0904"), QStringLiteral("090A")};
    if (is_can(car.link.adapter().cur_protocol())) {
        QStringList monitors;
        co_await find_monitors(car, monitors);
        for (const QString& monitor : std::as_const(monitors))
            requests += QStringLiteral("06") + monitor;
    }
    int asked = 0;
    for (const QString& request : std::as_const(requests)) {
        reply came;
        co_await ask_long(car, request, came);
        car.progress_of_part(static_cast<double>(++asked) / static_cast<double>(requests.size()));
    }
}

talk check_losses(link_check& car) {
    const QString pid = usual_pid(car.engine_ecu());
    QSet<QString> heard;
    const qint64 end_us = car.link.time_source().microseconds() + losses_us;
    while (car.found.requests < requests_for_losses && car.link.time_source().microseconds() < end_us) {
        reply came;
        try {
            co_await car.ask_car(QStringLiteral("01") + pid, came);
        } catch (const link_check::adapter_failed&) {
            count(car.found, outcome::unanswered);
            throw;
        }
        const outcome what = outcome_of(came, pid, heard);
        const exchange_moments when = car.link.moments();
        count(car.found, what);
        if (what == outcome::good)
            car.found.car_ms += static_cast<double>(when.last_byte - when.asked) / 1000;
        else
            co_await car.pause(until_no_frame_comes_ms);
        if (car.found.requests % told_every == 0)
            car.progress_of_part(static_cast<double>(car.found.requests) / requests_for_losses);
        if (car.found.requests % 100 == 0)
            car.show(QStringLiteral("Counting losses: %1 requests made, %2 not answered as they should")
                         .arg(car.found.requests)
                         .arg(car.found.bad()));
    }
}

talk check_fast_runs(link_check& car) {
    car.asks(QStringLiteral("what a fast run asks"));
    co_await probe_adapter(car);
}

talk check_settings(link_check& car) {
    co_await check_filter(car);
    co_await check_wait(car);
}

} // namespace brivant
