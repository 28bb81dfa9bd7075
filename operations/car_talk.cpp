#include "operations/car_talk.h"

#include "base/console_log.h"
#include "base/string_table.h"
#include "operations/connect_2_interface.h"
#include "operations/put_back_settings.h"

namespace brivant {

car_talk::car_talk(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view)
    : state(its_car), link(its_link), toolies(its_toolies), view(its_view), current_car(its_car),
      held([this](std::exception_ptr failure) { talk_over(std::move(failure)); }) {}

car_talk::~car_talk() {
    operation_ended = nullptr;
    held.drop();
}

// --- start and end -----------------------------------------------------------------------------------------

void car_talk::start(operation_start what) {
    current = std::move(what);
    waits_for_link = std::move(current.begin);
    running = true;
    replies = 0;
    parting = {};
    started();
    if (!current.status.isNull())
        set_status_msg(current.status);
    view.show_busy(true);
    if (link.openInterfaceConnection())
        link.l_work_current_task(QString());
}

void car_talk::work_current_task(const QString& status) {
    if (!running)
        return;
    if (!status.isEmpty())
        set_status_msg(status);
    if (const auto begin = std::exchange(waits_for_link, nullptr))
        held.begin(begin());
    else if (held.waits_for() == held_talk::thing::link)
        held.go_on();
}

void car_talk::stop() {
    link.stop_opening();
    leave_cur_op_gracefully(QStringLiteral("Stopped"));
}

void car_talk::leave_cur_op_gracefully(const QString& status) {
    if (close(status))
        told_the_end(false);
}

void car_talk::finish(bool done) {
    if (close(QString()))
        told_the_end(done);
}

bool car_talk::close(const QString& status) {
    held.drop();
    waits_for_link = nullptr;
    open_question.reset();
    pause_timer.reset();
    link.stop_timers();
    link.abandon_command();
    if (!status.isEmpty())
        set_status_msg(status);
    view.show_busy(false);
    view.show_toast(QStringLiteral(""));
    let_go();
    if (std::exchange(slowed, false))
        link.set_up_next_time(true);
    if (!std::exchange(running, false))
        return false;
    view.reload(part::operation);
    return true;
}

void car_talk::told_the_end(bool done) {
    if (operation_ended)
        operation_ended(done);
}

void car_talk::talk_over(std::exception_ptr failure) {
    const auto [notice, toast] = std::exchange(parting, {});
    if (failure)
        ended_early(failure);
    else
        task_done();
    if (!notice.isEmpty())
        view.show_message(QString(), notice);
    if (!toast.isEmpty())
        view.show_toast(toast);
}

void car_talk::ended_early(const std::exception_ptr& failure) {
    const auto fail = [this](const QString& text, bool has_box) {
        link.warn_no_more();
        leave_cur_op_gracefully(text);
        set_status_msg(text);
        if (has_box)
            view.show_message(QString(), text);
    };
    try {
        std::rethrow_exception(failure);
    } catch (const left& early) {
        leave_cur_op_gracefully(early.status);
    } catch (const link_lost& loss) {
        link.left_by_loss(loss);
    } catch (const failed& end) {
        fail(end.text, end.has_box);
    } catch (const std::exception& reason) {
        fail(fill(current.failure, {QString::fromUtf8(reason.what())}), true);
    }
}

// --- what the link tells -----------------------------------------------------------------------------------

void car_talk::handleOBDRcvdMsg(const reply& what_came) {
    if (!running)
        return;
    if (what_came.text().contains(QLatin1String("Timeout"))) {
        view.beep();
        return leave_cur_op_gracefully(QStringLiteral("Cur op timed out... Please Check/retry"));
    }
    if (held.waits_for() != held_talk::thing::reply)
        return;
    came = what_came;
    held.go_on();
}

void car_talk::handle_link_loss(const link_lost& loss) {
    if (held.waits_for() != held_talk::thing::nothing)
        return held.go_on_with(loss);
    if (!loss.at_reset)
        link.left_by_loss(loss);
}

// Without headers and with its echo on, an adapter that has reset itself would be read as something else.
reply car_talk::take_reply(const sent_command& command) {
    held.tell_what_was_thrown();
    ++replies;
    if (current.logged)
        console_log(QStringLiteral("%1:stepidx=%2 rcvd_msg=%3")
                        .arg(QLatin1String(current.logged))
                        .arg(replies)
                        .arg(came.text()));
    if (command.why == sent_command::purpose::ordinary && !link.adapter().adapter_ready())
        throw left{adapter_was_reset};
    return came;
}

// --- what a talk asks --------------------------------------------------------------------------------------

car_talk::asking car_talk::send(const sent_command& command) {
    return {*this, command};
}

car_talk::asking car_talk::at(const QString& command, const QString& expected) {
    return {*this, command_of(command + u'\r', expected, false)};
}

car_talk::asking car_talk::ask(const QString& request) {
    return {*this, command_of(request + u'\r', QString(), true)};
}

car_talk::asking car_talk::ask_as_shown(const QString& request) {
    return send(as_shown(request));
}

sent_command car_talk::as_shown(const QString& request) const {
    const bool shown = link.adapter().headers_shown();
    return command_of(request + u'\r', shown ? QString() : positive_reply_of(request), shown);
}

car_talk::asking car_talk::wait_longer() {
    slowed = true;
    return at(QStringLiteral("AT ST FF"), QStringLiteral("OK"));
}

car_talk::asking_person car_talk::ask_yes_no(const QString& title, const QString& text) {
    return {*this, false, title, text};
}

car_talk::asking_person car_talk::ask_same_car(const QString& title, const QString& text) {
    return {*this, true, title, text};
}

bool car_talk::asking_person::await_suspend(talk::handle who) {
    return car.held.wait(who, held_talk::thing::person, [this] {
        car.open_question = std::make_shared<int>(0);
        std::function<void(bool)> answered = [&of = car,
                                              asked = std::weak_ptr(car.open_question)](bool is_yes) {
            if (asked.expired())
                return; // the operation was left meanwhile
            of.open_question.reset();
            of.said_yes = is_yes;
            of.held.go_on();
        };
        if (is_about_the_car)
            car.view.ask_same_car(title, text, std::move(answered));
        else
            car.view.ask_yes_no(title, text, std::move(answered));
    });
}

bool car_talk::asking_person::await_resume() {
    car.open_question.reset();
    car.held.tell_what_was_thrown();
    return car.said_yes;
}

car_talk::pausing car_talk::pause(int milliseconds) {
    return {*this, milliseconds};
}

bool car_talk::pausing::await_suspend(talk::handle who) {
    return car.held.wait(who, held_talk::thing::time, [this] {
        car.pause_timer = car.link.time_source().one_shot(milliseconds, [&of = car] {
            of.pause_timer.reset();
            of.hurry();
        });
    });
}

bool car_talk::pausing::await_resume() {
    const bool was_hurried = std::exchange(car.pause_timer, nullptr) != nullptr;
    car.held.tell_what_was_thrown();
    return was_hurried;
}

void car_talk::hurry() {
    if (is_paused())
        held.go_on();
}

car_talk::reopening car_talk::again(const link_lost& loss) {
    return {*this, loss};
}

bool car_talk::reopening::await_suspend(talk::handle who) {
    return car.held.wait(who, held_talk::thing::link, [this] {
        if (loss.unnoticed)
            car.link.open_anew();
        else if (!loss.at_reset)
            car.link.reopen(loss.status);
    });
}

// A link that nobody used may have lost its far end without a sign: adapters go to sleep, networks are left.
talk car_talk::see_that_it_is_there() {
    sent_command question = command_of(QStringLiteral("AT I|2.0"), QStringLiteral("ELM"), false);
    question.why = sent_command::purpose::on_its_own;
    question.is_asked_again = false;
    question.is_sent_once = question.is_a_trial = true;
    co_await send(question);
    const bool has_answered = link.moments().first_byte != 0;
    const link_lost gone{.unnoticed = true};
    if (!has_answered)
        co_await again(gone);
}

talk car_talk::ready(QString opening) {
    if (!opening.isNull())
        show(opening);
    if (link.adapter().adapter_ready() && link.may_be_gone())
        co_await see_that_it_is_there();
    if (link.adapter().adapter_ready())
        co_await put_back_settings(*this);
    if (link.adapter().adapter_ready())
        co_return;
    co_await connect_2_interface(*this);
    if (!opening.isNull())
        show(opening);
}

} // namespace brivant
