#pragma once

#include <QString>

// What the link asks of the screen controller that is current: `readCodes`, `actions`, `expertCtrlr`.
class task_controller {
public:
    virtual ~task_controller() = default;

    // The link is up and the current operation is to start, or its current step is to be redone after a
    // time-out (adapter_link::is_redo()). A null status shows nothing.
    virtual void work_current_task(const QString& status) = 0;
    // A whole reply was accepted for the command in flight, or given up on ("~").
    virtual void handleOBDRcvdMsg(const QString& reply) = 0;
    // The operation is to stop: adapter error, link lost, too many time-outs, or the person said so. May come
    // at any moment and more than once.
    virtual void leave_cur_op_gracefully(const QString& status) = 0;
    // The link was lost while it was open. What the operation does about it:
    enum class link_loss {
        ends,         // it is left
        ends_reopens, // it is left, and the link opened again for the next one
        goes_on,      // it waits: work_current_task() is called when the link is open again
    };
    virtual link_loss on_link_lost() { return link_loss::ends; }
    virtual void set_status_msg(const QString& status) = 0;
    // A transient notice; "" hides it.
    virtual void handleOBDToast(const QString& toast) = 0;
};
