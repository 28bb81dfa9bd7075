#pragma once

#include "base/adapter_facts.h"
#include "base/screen.h"
#include "base/timers.h"
#include "link/adapter_quirks.h"
#include "link/adapter_search.h"
#include "link/connect_watchdog.h"
#include "link/exchange.h"
#include "link/reconnecting.h"
#include "link/start_steps.h"
#include "link/task_controller.h"
#include "link/transport.h"

#include <QObject>
#include <functional>
#include <memory>

namespace brivant {

// The one link to the adapter, for the life of the process: it opens and closes the transport, carries
// commands and replies through the exchange, and tells the current task controller what happens. Everything
// runs on the main thread. The place, the facts, the timers and the screen outlive it.
class adapter_link : public QObject, private exchange_owner {
    Q_OBJECT

public:
    using transport_maker = brivant::transport_maker;

    // `make_transport` builds the transport for the interface kind of the place, anew for each kind.
    adapter_link(adapter_place& its_place, adapter_facts& its_facts, timers& time_source, screen& its_screen,
                 transport_maker make_transport);
    ~adapter_link() override;

    // The controller that gets replies; the one before leaves its operation first. May be null.
    void set_controller(task_controller* controller);
    task_controller* mainViewController() const { return controller; }
    // Where it leads.
    const adapter_place& place() const { return far_end; }
    // What is known of the adapter there.
    const adapter_facts& adapter() const { return facts; }

    // Opens the link. True when it is up, so that the operation may start at once; false when it is still
    // opening (the controller's work_current_task() is called when it is up) or could not be opened.
    bool openInterfaceConnection();
    // Closes it, whatever its state.
    void disconnect();
    // Asked before an operation opens the link anew: it may lead the place elsewhere. Of what it returns, the
    // first that answers is taken.
    std::function<QList<adapter_search::candidate>()> lead_before_opening;
    // Lets the person choose the Bluetooth device, which may be an LE one, and opens the link to it. Nothing
    // while the link is another.
    void choose_bluetooth_device();
    // Gives up a link that is still opening, and one that was lost; an open one stays.
    void stop_opening();
    // A lost link is opened again by itself, from its loss until an operation has an answer over it.
    bool is_reconnecting() const { return again.is_active(); }
    // The operation waits for a new link: this one is closed, and opened again after a pause.
    void reopen(const QString& status);
    // The link was dead without a sign: it is closed, and opened anew for the operation.
    void open_anew();
    // Nothing has come from the adapter for so long that it may be gone without a sign.
    bool may_be_gone() const;
    // The computer slept: whatever was open is gone.
    void computer_woke();
    // The operation does not go on without this link.
    void left_by_loss(const link_lost& loss);
    bool is_connected() const { return link && link->state() == transport::condition::open; }
    // Also between two tries.
    bool is_opening() const {
        return !is_connected() && ((link && link->state() == transport::condition::opening) ||
                                   watchdog.is_running() || reopening || again.is_active() || search);
    }

    // Sends a command ("01 00\r") that may carry its own time-out in seconds ("01 00|12.0\r"; 3 without one).
    // `expectedReply`: alternatives separated by "|", or null for a reply that is checked by message.
    void sendOBDcmd_n(const QString& command, const QString& expectedReply, bool msg_has_hdr);
    // See exchange.
    void send(const sent_command& command);
    void sendOBDcmd(const QString& command) { send(as_typed(command)); }
    int timeouts() const { return traffic.timeouts(); }
    // How far the start of the link has come, or came last.
    const start_steps& start() const { return steps; }
    const exchange_moments& moments() const { return traffic.moments(); }
    void warn_no_more() { traffic.warn_no_more(); }
    bool is_being_answered() const { return traffic.is_being_answered(); }
    // Any byte makes an adapter stop what it is answering.
    void interrupt();
    bool is_late_reply_due() const { return traffic.is_late_reply_due(); }
    void forget_late_replies() { traffic.forget_late_replies(); }
    // The command that was sent last, with its "\r".
    const QString& current_command() const { return traffic.current_command().text; }
    // The initialisation tells what it finds out about the adapter:
    void adapter_answered(); // to a reset
    void protocol_told(int number);
    void describe_interface(const QString& text) { facts.interface_text = text; }
    void describe_protocol(const QString& text) { facts.protocol_text = text; }
    void adapter_is_set_up();
    // The next operation initialises it anew, `from_a_reset`: beginning with one.
    void set_up_next_time(bool from_a_reset);
    // What a run has changed at the adapter, as the commands that put it back ("AT S1"); that outlives the
    // link, because the adapter stays powered.
    void changes_setting(const QString& undo);
    bool has_changed_settings() const { return !undo_commands.isEmpty(); }
    QString undo_of_last_change() const { return undo_commands.last(); }
    void last_change_is_undone() { undo_commands.removeLast(); }
    void forget_changed_settings() { undo_commands.clear(); } // it was reset
    timers& time_source() const { return clock; }
    // False for an adapter whose link fell at "AT Z" before.
    bool may_be_reset() const { return quirks.may_be_reset(); }
    void do_not_reset() { quirks.do_not_reset(); }

    void l_set_status_msg(const QString& status);
    void l_set_toast_msg(const QString& toast);
    void l_work_current_task(const QString& status);
    void l_leave_cur_op_gracefully(const QString& status);
    void stop_timers();
    // No reply is awaited any more: the operation is over.
    void abandon_command() { traffic.abandon(); }
    void pop_a_messy(const QString& text, const QString& title = QString()) override;

Q_SIGNALS:
    // The Bluetooth device of the place is the one to remember.
    void device_taken();
    // The adapter of the place is set up, so it is one.
    void adapter_set_up();
    // The person has chosen the place itself, not only the Bluetooth device.
    void place_chosen();
    // Another step of the start is done.
    void start_went_on();
    // The link opened, closed or began to open; or what stands at its far end became known.
    void condition_changed();

private:
    // exchange_owner
    void transmit(const QByteArray& command) override;
    void show_status(const QString& status) override { l_set_status_msg(status); }
    void piece_arrived(const QString& text) override;
    void reply_refused() override { l_leave_cur_op_gracefully(QStringLiteral("")); }
    void reply_arrived(const reply& what_came) override;
    void command_unanswered() override;
    void adapter_started_anew() override;

    void make_sure_of_transport();
    bool open_place();
    bool look_for_one(const QList<adapter_search::candidate>& candidates);
    void found_one(const probed_adapter& which);
    bool openTCP_socky();
    bool openSerialPortProfile();
    // `status_for_none`: what the operation is left with when no device is chosen; null: it goes on.
    void ask_for_device(const QString& why, const QString& status_for_none);
    void take_device(const QString& address, const QString& name);
    void open_channel();
    void channel_opened();
    void channel_refused(const QString& reason, const QString& status_for_none);
    void close_link();
    void forget_adapter();
    void tell_loss(const link_lost& loss);
    bool fell_at_reset();
    void tell_pause(int seconds, int attempt);
    void open_again(int attempt);
    void link_opened();
    void link_failed(const QString& reason);
    void link_closed();
    void still_waiting(int tick, bool quiet);
    void never_opened();

    adapter_place& far_end;
    adapter_facts& facts;
    timers& clock;
    screen& view;
    transport_maker maker;
    exchange traffic;
    adapter_quirks quirks;
    QStringList undo_commands; // each once, in the order of the changes
    start_steps steps;
    connect_watchdog watchdog;
    reconnecting again;
    std::unique_ptr<transport> link;
    std::unique_ptr<adapter_search> search; // for whatever adapter is there
    int link_kind = 0;
    task_controller* controller = nullptr;
    bool tcpConnectReady = false; // the first task was started: replies reach the controller
    bool task_waits = false;      // an operation starts when the device's channel is open
    bool is_coming_back = false;  // the device was reset: that it is not there yet is no failure
    std::shared_ptr<int> asked;   // the question for a device that waits for its answer

    timer_handle reset_under_way; // for a second after "AT Z" was sent
    timer_handle reopening;       // an adapter that the reset took away is given time to come back
    timer_handle first_task;      // the first task of a connection starts a moment after it opened
    timer_handle late_toast_clearing;
    timer_handle late_message;
};

// The transport for the interface kind of the place.
std::unique_ptr<transport> make_transport(const adapter_place& place);

} // namespace brivant
