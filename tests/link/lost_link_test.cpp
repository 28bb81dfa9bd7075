#include "tests/link/link_bench.h"

namespace brivant {

// A link that is lost and opened again by itself, and adapters that do not bear every command.

namespace {

class lost_link : public link_test {
protected:
    lost_link() {
        controller.on_work = [this] { ask("AT I", "ELM"); };
    }
    // The link is up, and the operation goes on when it is lost.
    void begin(int kind = interface_wifi) {
        place.choose(kind);
        place.take_device("AA:BB:CC:DD:EE:01", QString());
        open();
        controller.goes_on = true;
        opens_at_once = adapter->opens_at_once = false;
    }
    QString trying(int seconds, int attempt) {
        return QString("Connection lost. Trying again in %1 s (try %2)").arg(seconds).arg(attempt);
    }
};

} // namespace

// The adapter has its link again within five seconds of being there, however long it was away.
TEST_F(lost_link, a_computer_that_wakes_is_in_a_hurry) {
    begin();
    ask("AT I", "ELM");
    link.computer_woke();
    for (int second = 0; second < 60; ++second)
        clock.advance(1000); // nobody there yet
    const int before = adapter->attempts;
    clock.advance(5000);
    EXPECT_GT(adapter->attempts, before);
    EXPECT_TRUE(link.is_reconnecting());
    adapter->finish_opening();
    clock.advance(800);
    EXPECT_TRUE(heard().endsWith("work"));
    clock.advance(120000);

    link.stop_opening();
    opens_at_once = adapter->opens_at_once = true;
    open();
    adapter->receive("ELM\r\r>");
    controller.goes_on = false;
    link.computer_woke(); // nothing is going on: the next operation opens it
    EXPECT_FALSE(link.is_connected() || link.is_opening());
    EXPECT_EQ(heard(), "reply ELM, leave");
}

TEST_F(lost_link, tells_how_far_its_start_has_come) {
    EXPECT_EQ(link.start().sentence(), "");
    opens_at_once = false;
    place.choose(interface_bluetooth);
    place.take_device("AA:BB:CC:DD:EE:01", QString());
    link.openInterfaceConnection();
    clock.advance(200);
    Q_EMIT adapter->radio_ready();
    EXPECT_EQ(link.start().sentence(), "Radio 0.2 s, link ...");
    clock.advance(300);
    adapter->finish_opening();
    link.adapter_answered();
    clock.advance(1500);
    link.protocol_told(-1);
    link.protocol_told(6);
    link.adapter_is_set_up();
    EXPECT_EQ(link.start().sentence(), "Radio 0.2 s, link 0.3 s, adapter 0.0 s, protocol 1.5 s, ECUs 0.0 s");
    link.disconnect();
    link.openInterfaceConnection();
    clock.advance(1000);
    link.disconnect();
    EXPECT_EQ(link.start().sentence(), "Radio failed 1.0 s");
}

TEST_F(lost_link, is_opened_again_with_growing_pauses_until_it_holds) {
    for (const int kind : {interface_wifi, interface_bluetooth}) {
        begin(kind);
        found_out.ready = found_out.known = true;
        adapter->break_off();
        EXPECT_FALSE(found_out.ready || found_out.known);
        int attempt = 0;
        for (const int pause : {1, 2, 4, 8, 16, 30, 30}) {
            const int before = adapter->attempts;
            ++attempt;
            for (int left = pause; left > 0; --left) {
                EXPECT_EQ(view.last("status"), trying(left, attempt));
                EXPECT_TRUE(link.is_opening() && link.is_reconnecting());
                clock.advance(1000);
            }
            EXPECT_EQ(adapter->attempts, before + 1);
            EXPECT_EQ(view.last("status"),
                      QString("Connection lost. Trying again now (try %1)").arg(attempt));
            if (attempt % 2 == 0)
                adapter->refuse("nobody there");
            else
                clock.advance(10000); // neither yes nor no
        }
        clock.advance(30000);
        adapter->finish_opening();
        clock.advance(800);
        EXPECT_EQ(heard(), "work");
        EXPECT_TRUE(link.is_reconnecting()); // whether it holds is not known yet
        adapter->break_off();
        EXPECT_EQ(view.last("status"), trying(30, 9));
        clock.advance(30000);
        adapter->finish_opening();
        clock.advance(800);
        EXPECT_EQ(heard(), "work");
        adapter->receive("ELM327>");
        EXPECT_FALSE(link.is_reconnecting());
        EXPECT_EQ(heard(), "reply ELM327");
        adapter->break_off(); // the next loss counts from one
        EXPECT_EQ(view.last("status"), trying(1, 1));
        EXPECT_EQ(view.events.filter("message: ").size(), 0);
        EXPECT_EQ(view.events.filter("choose").size(), 0);
        link.stop_opening();
        EXPECT_EQ(clock.running(), 0u);
        EXPECT_FALSE(link.is_opening());
        opens_at_once = true;
    }
}

TEST_F(lost_link, five_time_outs_are_a_loss_that_the_status_tells) {
    begin();
    ask("01 0C", "410C");
    clock.advance(15000);
    EXPECT_EQ(view.last("status"), trying(1, 1));
    EXPECT_FALSE(heard().contains("leave"));
    clock.advance(1000);
    adapter->finish_opening();
    clock.advance(800 + 15000); // and not a word from it
    EXPECT_EQ(view.last("status"), trying(2, 2));
    clock.advance(500);
    EXPECT_EQ(view.events.filter("message: ").size(), 0);
    link.set_controller(nullptr); // another screen
    EXPECT_EQ(heard(), "work, leave");
    clock.advance(500);
    EXPECT_EQ(clock.running(), 0u);
}

// Not by itself, nor behind a pause.
TEST_F(lost_link, a_link_that_nothing_waits_for_is_opened_by_the_next_operation) {
    begin();
    controller.goes_on = false;
    adapter->break_off();
    EXPECT_EQ(heard(), "leave");
    EXPECT_EQ(view.last("status"), "Disconnected");
    EXPECT_EQ(clock.running(), 0u);
    EXPECT_FALSE(link.openInterfaceConnection());
    adapter->finish_opening();
    clock.advance(800);
    EXPECT_EQ(heard(), "work");
}

// It is opened again once, and set up without a reset from then on.
TEST_F(lost_link, an_adapter_that_closes_its_link_on_a_reset) {
    for (const int kind : {interface_wifi, interface_bluetooth}) {
        place.choose(kind);
        place.take_device("AA:BB:CC:DD:EE:01", QString());
        open();
        EXPECT_TRUE(link.may_be_reset());
        ask("AT I", "ELM");
        adapter->break_off(); // at another command it is a loss as any
        EXPECT_EQ(heard(), "leave");
        open();
        set_up("AT Z");
        adapter->break_off();
        EXPECT_EQ(heard(), "");
        EXPECT_FALSE(link.may_be_reset());
        clock.advance(1800);
        EXPECT_EQ(heard(), "work");
        EXPECT_EQ(view.events.filter("message: ").size(), 0);
        set_up("AT Z");
        adapter->break_off(); // not twice
        EXPECT_EQ(heard(), "leave");
        link.openInterfaceConnection();
        clock.advance(800);
        EXPECT_FALSE(link.may_be_reset()); // in this run of the program
        link.disconnect();
        view.events.clear();
    }
    place.choose_wifi("192.168.0.11", "35000"); // nothing is known of another one
    open();
    EXPECT_TRUE(link.may_be_reset());
    set_up("AT Z");
    clock.advance(1100); // later than a reset takes
    adapter->break_off();
    EXPECT_TRUE(link.may_be_reset());
    EXPECT_EQ(clock.running(), 0u);
}

TEST_F(lost_link, a_command_at_which_the_adapter_falls_silent_is_not_asked_again) {
    struct row {
        const char* command;
        const char* expected;
        bool answered_before;
        bool adapter_known;
        bool found_out;
        const char* heard; // in place of an answer
    };
    const row rows[] = {
        {"AT RV", "8|9|1", false, true, true, "reply ?"}, // any answer is taken for this one
        {"AT H1", "OK", false, true, false, ""},          // it may just have lost its power
        {"AT H1", "OK", false, true, true, "reply ~"},    // twice: as if refused four times
        {"AT ST FF", "OK", true, true, false, ""},        // the adapter itself is gone
        {"AT SP A3", "OK", false, false, false, ""},      // perhaps no adapter is there
        {"AT Z", "OK|ELM", false, true, false, ""},       // nothing goes without
        {"01 00", "4100", false, true, false, ""},        // the car is silent
    };
    controller.on_work = nullptr;
    for (const row& row : rows) {
        open();
        if (row.answered_before) {
            ask(row.command, row.expected);
            adapter->receive("OK>");
        }
        found_out.known = row.adapter_known;
        ask(row.command, row.expected);
        clock.advance(5 * 3000 + 500);
        EXPECT_FALSE(link.is_connected()) << row.command;
        open();
        ask(row.command, row.expected);
        EXPECT_EQ(sent(), row.found_out ? "" : row.command);
        EXPECT_EQ(heard(), row.heard) << row.command;
        ask("AT I", "ELM"); // any other command is
        EXPECT_TRUE(sent().endsWith("AT I"));
        link.disconnect();
    }
    EXPECT_EQ(clock.running(), 0u);
}

} // namespace brivant
