#pragma once

#include "base/string_table.h"
#include "tests/support/adapter_bench.h"
#include "tests/support/print_qt.h"

#include <gtest/gtest.h>

namespace brivant {

// A controller that writes down what the link tells it.
class recording_controller : public task_controller {
public:
    recording_controller(adapter_link& its_link, screen& its_view) : link(its_link), view(its_view) {}

    QStringList heard;
    std::function<void()> on_work;  // what it sends when its task is to start
    std::function<void()> on_reply; // what it sends when a reply came
    bool goes_on = false;           // over a new link

    void work_current_task(const QString&) override {
        heard += "work";
        if (on_work)
            on_work();
    }
    void handleOBDRcvdMsg(const reply& came) override {
        heard += "reply " + came.text();
        if (const auto send = std::exchange(on_reply, {}))
            send();
    }
    void leave_cur_op_gracefully(const QString&) override { heard += "leave"; }
    void handle_link_loss(const link_lost& loss) override {
        if (loss.at_reset)
            return;
        if (goes_on)
            link.reopen(loss.status);
        else
            link.left_by_loss(loss);
    }
    void set_status_msg(const QString& status) override { view.show_status(status); }
    void handleOBDToast(const QString& toast) override { view.show_toast(toast); }

private:
    adapter_link& link;
    screen& view;
};

class link_test : public testing::Test, protected adapter_bench {
protected:
    recording_controller controller{link, view};

    link_test() { link.set_controller(&controller); }
    // Opens the link and lets the first task start.
    void open() {
        link.openInterfaceConnection();
        clock.advance(800);
        forget();
    }
    void ask(const QString& command, const QString& expected) {
        link.sendOBDcmd_n(command + "\r", expected, false);
    }
    void set_up(const QString& command) {
        sent_command setting_up = command_of(command + "\r", "OK|ELM", false);
        setting_up.why = sent_command::purpose::sets_up;
        link.send(setting_up);
    }
    void forget() {
        controller.heard.clear();
        view.events.clear();
        written.clear();
    }
    // What was heard since the last call, joined by ", ".
    QString heard() { return std::exchange(controller.heard, {}).join(", "); }
    QString sent() { return std::exchange(written, {}).join(", "); }
};

} // namespace brivant
