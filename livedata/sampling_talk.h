#pragma once

#include "livedata/adapter_passport.h"
#include "livedata/live_results.h"
#include "livedata/run_log.h"
#include "livedata/run_observer.h"
#include "operations/car_talk.h"
#include "position/position_source.h"

#include <optional>

namespace brivant {

// usual: one PID a request, as the adapter was set up.
enum class sampling_speed { usual, gentle, fast };

// What the sampling runs talk through: the car, where a value goes, and the sweep under way.
//
// A column never gets another PID's value: what is taken is "41", the PID and data bytes, or "~".
class sampling_talk : public car_talk {
public:
    // Everything referred to outlives it.
    sampling_talk(car_state& its_car, adapter_link& its_link, mac_toolies& its_toolies, screen& its_view,
                  timers& time_source, live_results& its_results, const app_paths& its_paths);

    // The start that every run makes: the adapter initialised, headers on where it can.
    talk ready_to_ask(QString opening);
    // The same, and every entry of the set with the header of its ECU.
    talk ready_to_sample(QString opening);
    // The set of the mode and, with the standard reading, `by_standard`: without what the engine lacks,
    // unless it is `demanded` ("0D 10"). A run that goes on keeps its columns.
    void fit_set(const QStringList& by_standard, const QString& demanded);
    // Every entry but those of the program's own PIDs is answered by its ECU; else the run ends with a text.
    // Not asked of a run that goes on over a new link.
    void make_sure_all_are_supported();

    // How the run asks, and what is known of the adapter for that.
    virtual sampling_speed speed() const = 0;
    virtual std::optional<adapter_passport> passport() const = 0;
    virtual void keep_passport(const adapter_passport& passport) = 0;
    request_plan::abilities abilities_of_adapter() const;
    void adapter_learnt(const request_plan::abilities& what);
    // In one of how many sweeps a gentle or fast run asks for a PID.
    virtual int every_so_many_sweeps(const QString& pid) const = 0;
    // The ECU's own map has the PID.
    bool tells(const QString& ecu, const QString& pid) const;

    // The sweep under way asks now.
    void begin_to_ask();
    // Asks for a PID, or for that of a row. In a run a time-out is a value that did not come.
    asking ask_pid(const QString& pid, bool is_asked_again, bool is_sent_once = false);
    asking ask_row(int index);
    // A PID that the car refuses is asked for once in many sweeps.
    bool is_turn_of(int index) const;
    // The data of the ECU that was meant ("410D3C"), "~" for none. When that ECU is not among those that
    // answered, the reply is used as it arrived: its first message counts.
    QString data_of_reply(const reply& what_came, const QString& pid, const QString& header) const;
    // The same for the PID of a row, under the row's own PID; tells it.
    QString data_of_reply(const reply& what_came, int index);
    // The same when the data are known.
    QString came_for(int index, QString data, const reply& what_came);

    // The data goes into row `index` and its column, and the view is told.
    void take(int index, const QString& data);
    // The same for a row whose text and number are not those of the data.
    void output_item(int index, const QString& data);
    // In the oxygen sensors' run the picture shows the value, too.
    void tell_sensor(int index);
    sample_row& row(int index) { return results.these_samples[index]; }
    int columns() const { return static_cast<int>(results.these_samples.size()); }
    // The largest and smallest number of the row.
    void note_extremes(sample_row& its_row, double value);

    // The run goes on: nobody has ended it, and the adapter is still set up.
    void check_the_run();
    // A complete sweep of these bodies, in set order: its line is stored when it is its turn, and the next
    // one begins. One without a value is a gap.
    void end_of_sweep(const QStringList& bodies);
    // No values come, or the link was lost: the sweep under way is dropped. However long a gap lasts, one row
    // and one line of the log are without values.
    void mark_gap();
    bool is_without_values() const { return is_in_gap; }
    // For five minutes now.
    bool is_car_gone() const { return car_is_gone; }
    void begin_anew();

    // The engine among the ECUs with their supported PIDs; the header "48xx10" and no PIDs while none is
    // known.
    obd_group engine_ecu();
    // Every entry of the set carries the header of its ECU from now on.
    virtual void addEngECU_toPidList() = 0;
    // The set of the run as the car determines it; the rows and the matrix are made anew.
    virtual void take_set(const QStringList& items) = 0;
    // A complete sweep, whose values stand in the rows, is stored where it is to be.
    virtual void take_sweep(const QString& line, const sweep_moment& when);
    // Never null.
    virtual run_observer& observer() = 0;

    // Where the positions of the stored sweeps come from; null for nowhere. It outlives this.
    void locate_by(position_source* source) { positions = source; }

    live_results& results;

protected:
    void started() override;
    void let_go() override { until_car_is_gone.reset(); }
    // Of the sweep that began at this moment of the run; nothing while none is known.
    std::optional<geo_position> where(double sweep_ms) const;

    run_log storing;
    position_source* positions = nullptr;

private:
    void tell_silence(bool is_silent);
    void end_gap();

    adapter_passport unkept;    // of an adapter without one: what the runs have learnt
    bool car_is_silent = false; // the last sweep was answered without a single value
    bool is_first_reply = true;
    bool headers_asked = false; // "AT H1" was tried
    qint64 sweeps_begun = 0;    // those without a value among them
    bool is_in_gap = false;
    bool car_is_gone = false;
    timer_handle until_car_is_gone;
};

// Puts a value into a column of the last row; index -1 begins a new row of "-1".
void add_item_to_log_vector(sample_matrix& vector, const QString& this_item_val, int this_idx);

// The PID that is asked for in the place of one of the program's own: boost is the manifold pressure.
QString requested_pid(const QString& pid);
// Fuel economy is asked of no car.
bool is_worked_out(const QString& pid);

// The runs. Each goes on over a new link, once it has a complete sweep; when the car has been gone for five
// minutes only its voltage is read, until it rises by half a volt or hurry() ends the pause.
talk work_out_log(sampling_talk& car);    // every PID of the set in turn, sweep after sweep
talk work_out_mpg(sampling_talk& car);    // speed and air flow, and from them the fuel economy ("E4")
talk work_out_boost(sampling_talk& car);  // manifold pressure shown as boost ("E5"), trims, fuel pressure
talk work_o2_layout(sampling_talk& car);  // the car's oxygen sensors (PID 13 or 1D), and the log run of these
talk sample_for_ever(sampling_talk& car); // what they have in common, once they are ready
talk run_over_any_link(sampling_talk& car, talk (*run)(sampling_talk&));

} // namespace brivant
