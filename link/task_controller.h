#pragma once

#include "obd/reply.h"

namespace brivant {

// The link is gone, or what stands at its far end has to be set up anew. It is thrown into the talk under
// way, which lets it end the operation or goes on over a new link.
struct link_lost {
    QString status{};  // shown when the operation waits for a new link, and when it is left
    QString message{}; // shown beside it when the operation is left, "" for none
    // The adapter took its link away with its reset, and the link opens it again by itself.
    bool at_reset = false;
    // It was dead before the operation began, and is opened anew at once.
    bool unnoticed = false;
    // The operation is left first, and the status shown behind that.
    bool status_stays = false;
};

// What the link asks of the screen controller that is current: `readCodes`, `actions`, `expertCtrlr`.
class task_controller {
public:
    virtual ~task_controller() = default;

    // The link is up, and the current operation is to start or to go on. A null status shows nothing.
    virtual void work_current_task(const QString& status) = 0;
    // A whole reply was accepted for the command in flight, or given up on ("~").
    virtual void handleOBDRcvdMsg(const reply& what_came) = 0;
    // Text that answers a command typed by hand, as it comes, in front of its reply.
    virtual void handle_piece(const QString&) {}
    // The operation is to stop: adapter error, too many time-outs, or the person said so. May come at any
    // moment and more than once.
    virtual void leave_cur_op_gracefully(const QString& status) = 0;
    // Calls adapter_link::reopen() or adapter_link::left_by_loss(), now or when the talk has heard of it.
    virtual void handle_link_loss(const link_lost& loss) = 0;
    virtual void set_status_msg(const QString& status) = 0;
    // A transient notice; "" hides it.
    virtual void handleOBDToast(const QString& toast) = 0;
};

} // namespace brivant
