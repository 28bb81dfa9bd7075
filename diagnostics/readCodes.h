#pragma once

#include "diagnostics/diagnostic_talk.h"
#include "diagnostics/reading_all.h"

namespace brivant {

// The controller of the diagnostics screen: it starts the diagnostic operations. One runs at a time.
class readCodes : public diagnostic_talk {
public:
    // Everything referred to outlives the controller.
    readCodes(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
              diagnostic_results& its_results, const app_paths& its_paths);
    ~readCodes() override;

    // Reads the codes and the readiness of the monitors.
    void l_readCodes();
    void clickRefresh() { l_readCodes(); }
    // Asks first, then clears the codes.
    void clearCodes();
    // Clears the codes; the person has said yes already.
    void start_clearing();
    // Pending codes and freeze frame; vehicle information; test results; maker-specific values.
    void readPendingFreezeCodes();
    void readVehicleInfo();
    void readMode6Support();
    void readMisfire();
    void readO2();
    void readXtras();
    // Permanent codes and the monitors of this drive cycle.
    void readPermanent();
    // Codes, readiness, pending codes and freeze frame, one operation after the other.
    void read_for_report();
    // All that is read of a car, one operation after the other; also between two of them it is running.
    void read_everything();
    const reading_all& everything() const { return all; }
    bool is_running() const override { return diagnostic_talk::is_running() || all.is_on(); }
    void stop() override;
    // Initialises the adapter and stops there.
    void read_link_info();
    // The window got the focus back.
    void regainFocus();
    // Sends a single command such as "AT H0\r" that is answered "OK", with its own time-out in seconds.
    void prep_and_send_cmd(const QString& command, int this_time_out);

private:
    using next_operation = void (readCodes::*)();
    struct read {
        operation code;
        const char* status;  // shown at once
        const char* failure; // with one place for the reason
        talk (*begin)(diagnostic_talk&);
        const char* logged = nullptr; // see operation_start
    };
    // `next`: what follows when it is done, as a part of it.
    void start_operation(const read& what, next_operation next = nullptr);
    void read_codes_and(next_operation next);
    // The operation whose results are this part alone.
    void read_anew(part which, const read& what);
    // Pending codes and freeze frame.
    void forget_pending();
    static constexpr next_operation pending_and_freeze = &readCodes::readPendingFreezeCodes;
    void task_done() override;
    void told_the_end(bool done) override;
    bool is_logging() const;
    void let_go() override { log.close(); }

    // Identifies the question in flight: an answer that comes after the screen was left is ignored.
    std::shared_ptr<int> asked;
    next_operation follows = nullptr;
    reading_all all{*this};
    bool report_due = false; // to be stored when the operation ends
};

} // namespace brivant
