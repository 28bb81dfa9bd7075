#pragma once

#include "livedata/actions.h"
#include "livedata/link_check.h"
#include "tests/support/conversation.h"

namespace brivant {

// Knows where the car is when the test says so.
struct told_position : position_source {
    std::optional<position_fix> fix;
    bool is_asked = false;

    void begin() override { is_asked = true; }
    void end() override { is_asked = false; }
    bool is_there() const override { return is_asked; }
    std::optional<position_fix> latest() const override { return is_asked ? fix : std::nullopt; }
    QString about() const override { return {}; }
};

// The live-data screen's controller on a scripted adapter, and what its view is told.
struct live_bench : adapter_bench, private run_observer {
    live_results results{[this](const QString& body) { return toolies.shown_number(body); }};
    told_position position;
    std::unique_ptr<brivant::actions> controller; // on the screen once something is done
    link_check checking{state, link, toolies, view, profile.defaults, clock, profile.paths};
    QStringList sensors; // the last value of each oxygen sensor
    QString layout = "none";
    int sweeps = 0;
    int stop_after = -1; // sweeps

    live_bench() {
        profile.defaults.set(setting::metric_units, true);
        // clang-format off
        bench_actions();
        facts["running"]  = [this] { return QString(controller->is_running() ? "yes" : "no"); };
        facts["set"]      = [this] { return results.pid_logitems_list.join(' '); };
        facts["names"]    = [this] { return column([](const sample_row& r) { return r.name; }); };
        facts["sweeps"]   = [this] { return QString::number(results.sample_cnt); };
        facts["lines"]    = [this] { return QString::number(results.log_sample_cnt); };
        facts["latest"]   = [this] { return column([](const sample_row& r) { return r.value; }); };
        facts["extremes"] = [this] { return column([](auto& r) { return r.min + " to " + r.max; }); };
        facts["matrix"]   = [this] { return matrix(); };
        facts["data"]     = [this] { return rows("SELECT LINE_NUMBER||':'||DATA||DATA2 FROM LOGGIES_DATA"); };
        facts["positions"] = [this] { return rows("SELECT LOG_ID || ':' || LINE_NUMBER, OFFSET_MS, LATITUDE, LONGITUDE, ALTITUDE FROM BV_POSITIONS"); };
        facts["log"]      = [this] { return rows("SELECT LOG_TYPE, '[' || INFO || ']' FROM LOGGIES"); };
        facts["layout"]   = [this] { return layout; };
        facts["sensors"]  = [this] { return sensors.join(' '); };
        facts["passport"] = [this] {
            QString line = profile.defaults.value(setting::adapter_passports).join(' ');
            return line.replace(QDate::currentDate().toString(Qt::ISODate), "today");
        };
        facts["verdict"]  = [this] { return checking.verdict().words; };
        facts["checked"]  = [this] { return QString(checking.is_running() ? "no" : "yes"); };
        for (const char* title : {"Trouble", "Version", "Commands", "Longest command", "Longest answer", "Losses", "Fast runs", "Values a second"})
            facts[QString(title).replace(' ', '-')] = [this, title] { return words_of(title); };
        facts["files"]    = [this] { return QString(session_files().entryList({"*.gol"}).isEmpty() ? "none" : "gol"); };
        // clang-format on
    }

    // The rows of a query, "a b / a b".
    QString rows(const QString& query) {
        QStringList lines;
        for (const QStringList& row : profile.db.retrieve_from_DB(query))
            lines += row.join(' ');
        return lines.join(" / ");
    }

    // The screen as it is opened.
    brivant::actions& opened() {
        if (!controller) {
            controller = std::make_unique<brivant::actions>(state, link, toolies, view, profile.defaults,
                                                            clock, results, profile.paths);
            controller->set_observer(this);
            controller->locate_by(&position);
            link.set_controller(controller.get());
            view.events.clear();
        }
        return *controller;
    }

private:
    QDir session_files() const { return QDir(profile.paths.application_folder + "/loggies"); }
    void bench_actions() {
        const QStringList modes{"log", "fuel", "o2", "boost"};
        for (int mode = 0; mode < modes.size(); ++mode)
            actions[modes[mode]] = [this, mode](const QString&) { choose_and_start(mode); };
        actions["check"] = [this](const QString&) {
            link.set_controller(&checking);
            checking.start();
        };
        actions["stop-check"] = [this](const QString&) { checking.stop(); };
        actions["button"] = [this](const QString&) { opened().runLogs(); };
        actions["stop"] = [this](const QString&) { opened().stop(); };
        actions["hurry"] = [this](const QString&) { opened().hurry(); };
        actions["leave-screen"] = [this](const QString&) { link.set_controller(nullptr); };
        actions["pids"] = [this](const QString& pids) { opened().use_pids(pids.split(' ')); };
        actions["store"] = [this](const QString&) { profile.defaults.set(setting::log_runs, true); };
        // "52.5 13.25": told now; "" for none any more
        actions["position"] = [this](const QString& words) {
            position.fix.reset();
            if (!words.isEmpty())
                position.fix = position_fix{
                    {words.section(' ', 0, 0).toDouble(), words.section(' ', 1).toDouble(), 34.5, 16.6},
                    clock.microseconds()};
        };
        actions["rate"] = [this](const QString& rate) {
            profile.defaults.set(setting::sample_rate, rate.toInt());
        };
        actions["units"] = [this](const QString& units) {
            profile.defaults.set(setting::metric_units, units == "metric");
        };
        actions["standard"] = [this](const QString& on) {
            profile.defaults.set(setting::standard_reading, on == "on");
        };
        actions["stop-after"] = [this](const QString& count) { stop_after = count.toInt(); };
        actions["speed"] = [this](const QString& speed) {
            profile.defaults.set(setting::sampling_speed, speed.toInt());
        };
        // What was found out about the adapter before: nothing that it cannot do.
        actions["passport"] = [this](const QString&) {
            opened().keep_passport({.address = place.address(), .probed = QDate::currentDate()});
        };
        actions["choose"] = [this](const QString& mode) {
            opened().comboBoxSelectionDidChange(mode.toInt());
        };
        actions["set-changed"] = [this](const QString&) { opened().sample_set_changed(); };
    }
    void choose_and_start(int mode) {
        opened().comboBoxSelectionDidChange(mode);
        if (!controller->is_running())
            controller->runLogs();
    }
    QString words_of(const char* title) const {
        for (const check_row& row : checking.rows())
            if (row.title == title)
                return row.words;
        return {};
    }
    template <typename Text>
    QString column(Text text) {
        QStringList texts;
        for (const sample_row& row : results.these_samples)
            texts += text(row);
        return texts.join(", ");
    }
    QString matrix() const {
        QStringList lines;
        for (qsizetype row = 0; row < results.cur_log_points.rows(); ++row) {
            QStringList cells;
            for (int column = 0; column < results.cur_log_points.columns(); ++column)
                cells += results.cur_log_points.body(row, column);
            lines += cells.join(' ');
        }
        return lines.join(" / ");
    }
    void set_changed() override { sensors.clear(); }
    void run_started() override {}
    void run_ended() override {}
    void sample_arrived(int) override {}
    void sweep_completed() override {
        ++sweeps;
        if (sweeps == stop_after)
            controller->stop();
    }
    void o2_layout_known(int mask, const QString& header) override {
        layout = QString::number(mask, 16) + "|" + header;
    }
    void set_sensor_value(int sensor, const QString& this_value) override {
        while (sensors.size() <= sensor)
            sensors += "-";
        sensors[sensor] = this_value;
    }
};

} // namespace brivant
