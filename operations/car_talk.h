#pragma once

#include "base/screen.h"
#include "link/adapter_link.h"
#include "operations/held_talk.h"
#include "operations/operation_code.h"
#include "toolkit/mac_toolies.h"

#include <functional>
#include <stdexcept>

namespace brivant {

// What a talk throws when it cannot go on: the reason is shown to the person.
class step_failure : public std::runtime_error {
public:
    explicit step_failure(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

// The operation is left, with this status; "" shows none.
struct left {
    QString status = QStringLiteral("");
};

// The operation is left, and the whole sentence shown as its status and, with `has_box`, as a notice.
struct failed {
    QString text;
    bool has_box = true;
};

// Why an operation over an adapter that is no longer set up is left.
inline const QString adapter_was_reset =
    QStringLiteral("The adapter has reset itself, as it does when its voltage drops. Start again (F5)");

// A screen's side of the talk with the car: it starts an operation when the link is up, carries commands and
// replies between its talk and the link, and ends it: at the talk's end, when the talk throws, or when the
// link or the person says so. One operation runs at a time. All that it refers to outlives it.
//
// A talk gets the car_talk by reference. Commands are written without their "\r".
class car_talk : public task_controller {
public:
    car_talk(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view);
    ~car_talk() override;

    // From the start, while the link opens and the adapter is set up, to the end.
    virtual bool is_running() const { return running; }
    // The code of the operation that runs, or ran last.
    int cur_op() const { return current.code; }
    // The person stops the operation, or gives up a link that is opening.
    virtual void stop();
    // Called when an operation has ended: true when it reached its end, false when it failed or was left.
    std::function<void(bool done)> operation_ended;

    // task_controller
    void work_current_task(const QString& status) override;
    void handleOBDRcvdMsg(const reply& what_came) override;
    void leave_cur_op_gracefully(const QString& status) override;
    void handle_link_loss(const link_lost& loss) override;
    void set_status_msg(const QString& status) override { view.show_status(status); }
    void handleOBDToast(const QString& toast) override { view.show_toast(toast); }

    // --- what a talk asks; each is waited for with co_await ---

    class asking;
    // An adapter command, or a request whose reply has one of the expected texts, separated by "|".
    asking at(const QString& command, const QString& expected);
    // A request whose reply is checked by message, headers shown.
    asking ask(const QString& request);
    // A request whose reply is read with headers or without, as the adapter shows them now.
    asking ask_as_shown(const QString& request);
    // The same, not sent yet.
    sent_command as_shown(const QString& request) const;
    asking send(const sent_command& command);
    // A question to the person: true for Yes. The second: see screen::ask_same_car().
    class asking_person;
    asking_person ask_yes_no(const QString& title, const QString& text);
    asking_person ask_same_car(const QString& title, const QString& text);
    // A pause: true when hurry() ended it.
    class pausing;
    pausing pause(int milliseconds);
    void hurry();
    bool is_paused() const { return held.waits_for() == held_talk::thing::time; }
    // The last reply came inside the call that sent its command.
    bool was_answered_at_once() const { return held.was_at_once(); }
    // The link open again: after a loss it is opened again and again, from now on.
    class reopening;
    reopening again(const link_lost& loss);

    // The adapter is initialised on this link; `opening` is the operation's first status, null for none.
    talk ready(QString opening);
    // The adapter waits for the car as long as it can. That stays in force until it is reset, and makes
    // everything slow, so the next operation starts from a reset.
    asking wait_longer();

    void show(const QString& status) { set_status_msg(status); }
    // When the talk has ended, a notice and a toast are shown, each unless "".
    void part_with(const QString& notice, const QString& toast) { parting = {notice, toast}; }

    const car_state& state;
    adapter_link& link;
    mac_toolies& toolies;
    screen& view;

    // What the car itself supports.
    void pids_told(const obd_groups& by_the_car) { current_car.pids_told(by_the_car); }

protected:
    car_state& current_car;

    struct operation_start {
        int code = -1;
        QString status;     // shown at once
        QString failure;    // the failure text, with one place for the reason
        const char* logged; // the name under which its replies go to the console log, null for none
        std::function<talk()> begin;
    };
    // Begins the operation when the link is up.
    void start(operation_start what);
    // is_running() has become true; nothing was said yet.
    virtual void started() {}
    // The operation has reached its end.
    virtual void task_done() { finish(true); }
    // Lets go of what the operation before held, if there was one.
    virtual void let_go() {}
    // It is over, and all let go.
    virtual void told_the_end(bool done);
    // Ends it, as leave_cur_op_gracefully() does; true when there was one.
    bool close(const QString& status);

private:
    talk see_that_it_is_there();
    void finish(bool done);
    void talk_over(std::exception_ptr failure);
    void ended_early(const std::exception_ptr& failure);
    reply take_reply(const sent_command& command);

    held_talk held;
    operation_start current;
    std::function<talk()> waits_for_link; // the talk that has not begun yet
    struct {
        QString notice, toast;
    } parting;
    reply came; // that the talk goes on with
    int replies = 0;
    bool said_yes = false;
    std::shared_ptr<int> open_question; // the question that is open
    timer_handle pause_timer;
    bool running = false;
    bool slowed = false;
};

class car_talk::asking {
public:
    asking(car_talk& its_car, const sent_command& what) : car(its_car), command(what) {}
    bool await_ready() const { return false; }
    bool await_suspend(talk::handle who) {
        return car.held.wait(who, held_talk::thing::reply, [this] { car.link.send(command); });
    }
    reply await_resume() { return car.take_reply(command); }

private:
    car_talk& car;
    sent_command command;
};

class car_talk::asking_person {
public:
    asking_person(car_talk& its_car, bool about_the_car, const QString& its_title, const QString& its_text)
        : car(its_car), is_about_the_car(about_the_car), title(its_title), text(its_text) {}
    bool await_ready() const { return false; }
    bool await_suspend(talk::handle who);
    bool await_resume();

private:
    car_talk& car;
    bool is_about_the_car; // else a question like any other
    QString title;
    QString text;
};

class car_talk::pausing {
public:
    pausing(car_talk& its_car, int its_milliseconds) : car(its_car), milliseconds(its_milliseconds) {}
    bool await_ready() const { return false; }
    bool await_suspend(talk::handle who);
    bool await_resume();

private:
    car_talk& car;
    int milliseconds;
};

class car_talk::reopening {
public:
    reopening(car_talk& its_car, const link_lost& its_loss) : car(its_car), loss(its_loss) {}
    bool await_ready() const { return false; }
    bool await_suspend(talk::handle who);
    void await_resume() { car.held.tell_what_was_thrown(); }

private:
    car_talk& car;
    link_lost loss;
};

} // namespace brivant
