#include "livedata/link_check.h"

#include <algorithm>
#include <array>

namespace brivant {

namespace {

run_observer no_observer;

constexpr int most_silences = 3;
constexpr int watch_ms = 1000;
constexpr int longest_without_link = 60; // seconds

// clang-format off
constexpr std::array<link_check::part, 7> all_parts{{
    {"Asking the adapter which commands it knows",                check_commands,     false, 8},
    {"Trying how long a command may be",                          check_lines,        false, 10},
    {"Timing the adapter alone",                                  check_adapter_pace, false, 12},
    {"Asking the car for its longest answers",                    check_long_answers, true,  25},
    {"Counting losses: 500 requests, or a minute",                check_losses,       true,  70},
    {"Finding out what a fast run could use",                     check_fast_runs,    true,  90},
    {"Trying whether the adapter does what it says OK to",        check_settings,     true,  100},
}};
// clang-format on

} // namespace

link_check::link_check(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                       user_defaults& settings, timers& time_source, const app_paths& its_paths)
    : sampling_talk(its_car, its_link, its_toolies, its_view, time_source, nothing_sampled, its_paths),
      nothing_sampled([](const QString&) { return qQNaN(); }), defaults(settings) {}

link_check::~link_check() {
    operation_ended = nullptr;
    changed = nullptr;
    if (link.mainViewController() == this)
        link.set_controller(nullptr);
}

run_observer& link_check::observer() {
    return no_observer;
}

void link_check::start() {
    if (is_running())
        return;
    found = {};
    begun = far = silences = 0;
    link.set_up_next_time(true); // the car's part begins with a reset, whatever was set before it
    car_talk::start({op_link_check, QStringLiteral("Checking the adapter"),
                     QStringLiteral("The adapter check did not reach its end: %@"), nullptr,
                     [this] { return find_out(); }});
}

void link_check::started() {
    sampling_talk::started();
    seconds_without_link = 0;
    watch_link();
}

void link_check::let_go() {
    watch.reset();
    sampling_talk::let_go();
}

// A link that is opened again is tried for ever; here somebody waits for the verdict.
void link_check::watch_link() {
    watch = link.time_source().one_shot(watch_ms, [this] {
        seconds_without_link = link.is_connected() ? 0 : seconds_without_link + 1;
        if (seconds_without_link < longest_without_link)
            return watch_link();
        const QString trouble = QStringLiteral("Its link did not come back within a minute.");
        found.troubles += trouble;
        link.stop_opening();
        leave_cur_op_gracefully(trouble);
    });
}

void link_check::keep_passport(const adapter_passport& passport) {
    found.passport = passport;
    if (!passport.address.isEmpty())
        defaults.set(setting::adapter_passports,
                     with_passport(defaults.value(setting::adapter_passports), passport));
}

void link_check::progress_of_part(double share) {
    const int from = begun == 0 ? 0 : all_parts[static_cast<size_t>(begun) - 1].until;
    const int to = all_parts[static_cast<size_t>(begun)].until;
    far = from + static_cast<int>(share * (to - from));
    if (changed)
        changed();
}

// --- the parts, one after the other ------------------------------------------------------------------------

talk link_check::find_out() {
    for (begun = 0; begun < static_cast<int>(all_parts.size()); ++begun) {
        const part& one = all_parts[static_cast<size_t>(begun)];
        show(QLatin1String(one.status));
        progress_of_part(0);
        co_await go_through(one);
    }
    --begun;
    progress_of_part(1);
    show(QStringLiteral("The adapter is checked"));
}

talk link_check::go_through(const part& one) {
    std::optional<adapter_failed> failure;
    try {
        if (one.with_car) {
            found.car_was_asked = true;
            asked = QStringLiteral("its set-up");
            const int told_before = state.times_told();
            co_await ready_to_ask(QString());
            found.car_answers = found.car_answers || state.times_told() > told_before;
        } else {
            reply echo;
            co_await ask_adapter(QStringLiteral("AT E0"), QStringLiteral("OK"), echo);
        }
        co_await one.run(*this);
    } catch (const adapter_failed& early) {
        failure = early;
    } catch (const link_lost& loss) {
        if (!loss.at_reset)
            found.troubles += QStringLiteral("Its link was lost at %1.").arg(asked);
        throw;
    }
    if (!failure)
        co_return;
    found.troubles += failure->trouble;
    if (!failure->is_silent)
        co_return;
    if (++silences == most_silences)
        throw step_failure(QStringLiteral("the adapter falls silent again and again. Unplug it for ten "
                                          "seconds, plug it in and check it again"));
    begin_anew();
    const link_lost why{.status = failure->trouble + QStringLiteral(" The link is opened again")};
    co_await again(why);
}

// --- one question ------------------------------------------------------------------------------------------

talk link_check::ask(sent_command command, reply& told) {
    asked = command.text.trimmed();
    command.is_asked_again = false;
    command.is_a_trial = true;
    command.why = sent_command::purpose::on_its_own;
    const bool was_ready = link.adapter().adapter_ready();
    told = co_await send(command);
    const bool is_reset =
        tells_a_reset(told.raw().text, {command}) || (was_ready && !link.adapter().adapter_ready());
    if (is_reset)
        throw adapter_failed{QStringLiteral("It reset itself at %1.").arg(asked)};
    if (!told.is_none() || link.timeouts() == 0)
        co_return;
    // What still comes stands before the answer to another command.
    sent_command sign_of_life = command_of(QStringLiteral("AT E0\r"), QStringLiteral("OK"), false);
    sign_of_life.why = sent_command::purpose::on_its_own;
    sign_of_life.is_asked_again = false;
    sign_of_life.is_sent_once = sign_of_life.is_a_trial = true;
    for (int tries = 0; tries < 2 && link.timeouts() > 0; ++tries)
        co_await send(sign_of_life);
    if (link.timeouts() > 0)
        throw adapter_failed{QStringLiteral("It fell silent at %1.").arg(asked), true};
}

talk link_check::ask_adapter(QString command, QString expected, reply& told) {
    const sent_command question = command_of(command + u'\r', expected + QStringLiteral("|?"), false);
    co_await ask(question, told);
    if (told.is_none())
        co_await ask(question, told);
}

talk link_check::ask_car(QString request, reply& told) {
    sent_command question = as_shown(request);
    question.is_sent_once = true;
    co_await ask(question, told);
}

} // namespace brivant
