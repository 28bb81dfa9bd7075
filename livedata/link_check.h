#pragma once

#include "livedata/check_findings.h"
#include "livedata/sampling_talk.h"

namespace brivant {

// The controller of the adapter check: it finds out what the adapter can do, alone and with the car, and
// tells it as rows and a verdict. What was found until it was stopped or the link was lost is told as well.
//
// A view needs: start(), stop(), is_running(), rows(), verdict(), progress(), `changed` and operation_ended.
class link_check : public sampling_talk {
public:
    // Everything referred to outlives the controller.
    link_check(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
               user_defaults& settings, timers& time_source, const app_paths& its_paths);
    ~link_check() override;

    void start();
    // The latest, also while it runs.
    QList<check_row> rows() const { return rows_of(found); }
    check_row verdict() const { return verdict_of(found); }
    const check_findings& findings() const { return found; }
    // In per cent.
    int progress() const { return far; }
    // Rows, verdict or progress are other ones.
    std::function<void()> changed;

    // --- for its talks ---

    check_findings found;
    // A part of the whole has come so far, of 1.
    void progress_of_part(double share);
    // What it could not bear, after which it is silent or was reset.
    struct adapter_failed {
        QString trouble; // a sentence
        bool is_silent = false;
    };
    // Asks the adapter for something; "?" is an answer as well. One that is not answered is asked for once
    // more where the adapter still lives; else `told` is none.
    talk ask_adapter(QString command, QString expected, reply& told);
    // The same of a request to the car, a single time.
    talk ask_car(QString request, reply& told);

    // What it is asked from now on is called so, should the link be lost.
    void asks(const QString& what) { asked = what; }

    // sampling_talk
    sampling_speed speed() const override { return sampling_speed::usual; }
    std::optional<adapter_passport> passport() const override { return found.passport; }
    void keep_passport(const adapter_passport& passport) override;
    int every_so_many_sweeps(const QString&) const override { return 1; }
    void addEngECU_toPidList() override {}
    void take_set(const QStringList&) override {}
    run_observer& observer() override;

    struct part {
        const char* status;
        talk (*run)(link_check&);
        bool with_car;
        int until; // per cent of the whole
    };

protected:
    void started() override;
    void let_go() override;

private:
    talk find_out();
    talk go_through(const part& one);
    talk ask(sent_command command, reply& told);
    void watch_link();

    live_results nothing_sampled;
    user_defaults& defaults;
    int begun = 0; // parts
    int far = 0;
    int silences = 0;
    QString asked; // last
    int seconds_without_link = 0;
    timer_handle watch;
};

// The parts of the check.
talk check_commands(link_check& car);     // which commands it knows, by their answers
talk check_lines(link_check& car);        // how long a command may be
talk check_adapter_pace(link_check& car); // how soon it answers by itself
talk check_long_answers(link_check& car); // whether the long answers of this car come whole
talk check_losses(link_check& car);       // what comes of 500 requests, and how soon
talk check_fast_runs(link_check& car);    // what a fast run could use
talk check_settings(link_check& car);     // AT ST and AT CRA, by their effect

} // namespace brivant
