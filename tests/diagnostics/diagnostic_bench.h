#pragma once

#include "diagnostics/code_detail.h"
#include "diagnostics/permanent_codes.h"
#include "diagnostics/readCodes.h"
#include "diagnostics/second_reading.h"
#include "diagnostics/second_status.h"
#include "diagnostics/stored_result.h"
#include "diagnostics/verdict.h"
#include "tests/support/conversation.h"

#include <QRegularExpression>

namespace brivant {

// The diagnostics screen's controller on a scripted adapter.
struct diagnostic_bench : adapter_bench {
    diagnostic_results results;
    readCodes controller{state, link, toolies, view, results, profile.paths};
    QString ended = "no"; // how the last operation ended

    diagnostic_bench() {
        link.set_controller(&controller);
        view.events.clear();
        controller.operation_ended = [this](bool done) { ended = done ? "done" : "failed"; };

        actions["read-codes"] = [this](const QString&) { controller.l_readCodes(); };
        actions["clear-codes"] = [this](const QString&) { controller.clearCodes(); };
        actions["link-info"] = [this](const QString&) { controller.read_link_info(); };
        actions["mode6"] = [this](const QString&) { controller.readMode6Support(); };
        actions["misfire"] = [this](const QString&) { controller.readMisfire(); };
        actions["o2-tests"] = [this](const QString&) { controller.readO2(); };
        actions["pending"] = [this](const QString&) { controller.readPendingFreezeCodes(); };
        actions["vehicle-info"] = [this](const QString&) { controller.readVehicleInfo(); };
        actions["extras"] = [this](const QString&) { controller.readXtras(); };
        actions["report"] = [this](const QString&) { controller.read_for_report(); };
        actions["everything"] = [this](const QString&) { controller.read_everything(); };
        actions["permanent"] = [this](const QString&) { controller.readPermanent(); };
        actions["standard"] = [this](const QString& on) {
            profile.defaults.set(setting::standard_reading, on == "on");
        };
        actions["metric"] = [this](const QString& on) {
            profile.defaults.set(setting::metric_units, on == "on");
        };
        actions["logging"] = [this](const QString& on) {
            profile.defaults.set(setting::log_runs, on == "on");
        };
        actions["stop"] = [this](const QString&) { controller.stop(); };
        for (const auto& [name, which] : {std::pair("codes", part::codes),
                                          {"mode6", part::mode6},
                                          {"misfire", part::misfire},
                                          {"o2", part::o2},
                                          {"pending", part::pending},
                                          {"freeze", part::freeze},
                                          {"vehicle", part::vehicle},
                                          {"extras", part::extras}})
            add_results(name, which);
        facts["reading"] = [this] { return controller.everything().words(); };
        facts["failed"] = [this] { return controller.everything().what_failed(); };
        facts["list"] = [this] {
            QStringList rows;
            for (const listed_code& row : listed().rows)
                rows += row.is_sentence() ? row.sentence : row.code + ' ' + row.kinds();
            return rows.join(" / ");
        };
        facts["verdict"] = [this] {
            const second_reading vehicle(part::vehicle, results, toolies);
            const verdict told = judge(results, listed(), read_status_again(results, toolies),
                                       read_permanent_codes(results, toolies).was_read, vehicle.shown());
            return QStringList{told.answer, told.more, told.monitors, told.missing, told.vin, told.voltage}
                .join(" / ");
        };
        facts["detail"] = [this] {
            const QList<noted_row> frame = second_reading(part::freeze, results, toolies).shown();
            const QList<noted_row> tests = second_reading(part::mode6, results, toolies).shown();
            return one_line({detail_of(listed().rows.value(0), "text", "ECU", frame, tests).as_text()});
        };
        facts["faults-status"] = [this] { return read_status_again(results, toolies).faults; };
        facts["line-status"] = [this] { return read_status_again(results, toolies).line; };
        facts["permanent"] = [this] {
            const permanent_codes read = read_permanent_codes(results, toolies);
            const QStringList rows = row_texts(part::permanent, plain(read.rows));
            return read.was_read ? (rows + QStringList(read.words)).join(' ').trimmed() : "not read";
        };
        facts["cycle"] = [this] {
            const permanent_codes read = read_permanent_codes(results, toolies);
            QStringList states(read.drive_cycle_words);
            for (const readiness_row& row : read.drive_cycle)
                states += row.state;
            return states.join(' ').trimmed();
        };
        facts["logs"] = [this] { return stored_logs(); };
        facts["stored-replies"] = [this] {
            QStringList requests;
            const auto logs = profile.db.retrieve_from_DB("SELECT LOG_ID FROM LOGGIES ORDER BY LOG_ID DESC");
            for (const stored_reply& one :
                 replies_of(profile.db, logs.value(0).value(0).toInt()).value_or(QList<stored_reply>()))
                requests += one.request;
            return requests.join(' ');
        };
        facts["stored-standard"] = [this] {
            const auto logs =
                profile.db.retrieve_from_DB("SELECT LOG_ID, LOG_TYPE FROM LOGGIES ORDER BY LOG_ID DESC");
            return standard_text(
                       logs.value(0).value(1),
                       replies_of(profile.db, logs.value(0).value(0).toInt()).value_or(QList<stored_reply>()),
                       toolies)
                .section('\n', 2, 4)
                .replace('\n', " / ");
        };
        facts["mil"] = [this] { return results.mil_label; };
        facts["announced"] = [this] { return results.code_count_label; };
        facts["ecus"] = [this] { return QString::number(results.no_of_ecus); };
        facts["readiness"] = [this] {
            QStringList states;
            for (const readiness_row& row : results.readinessFlagsArray)
                states += row.state;
            return states.join(' ');
        };
        facts["facts"] = [this] {
            return results.xtraInfoArray.mid(1).join(", ");
        }; // without the time of the read
        facts["ended"] = [this] { return ended; };
        results.P0_Codes = {{"P0133", " the sensor's answer is slow"}}; // the whole list takes its time
    }

    // "codes", "std-codes", "shown-codes", "notes-codes", "line-codes", "faults-codes": the rows of a part,
    // the standard's, the shown ones, what stands beside these, the line about them, what was not answered.
    void add_results(const QString& name, part which) {
        const auto joined = [which](const QList<result_row>& rows) {
            const QStringList texts = row_texts(which, rows);
            return which == part::codes ? texts.join(", ") : one_line(texts);
        };
        facts["shown-" + name] = [this, which, joined] {
            return joined(plain(second_reading(which, results, toolies).shown()));
        };
        facts[name] = [this, which, joined] { return joined(results.rows(which)); };
        facts["std-" + name] = [this, which, joined] {
            return joined(plain(second_reading(which, results, toolies).standard_rows()));
        };
        facts["notes-" + name] = [this, which] {
            const second_reading reading(which, results, toolies);
            QStringList notes;
            for (int row = 0; row < reading.shown().size(); ++row)
                if (!reading.shown()[row].note.isEmpty())
                    notes += QString::number(row) + ' ' + reading.shown()[row].note;
            return one_line(notes);
        };
        facts["faults-" + name] = [this, which] {
            return second_reading(which, results, toolies).faults().join(", ");
        };
        facts["line-" + name] = [this, which] { return second_reading(which, results, toolies).line(); };
    }

    code_list listed() {
        const second_reading codes(part::codes, results, toolies);
        const second_reading pending(part::pending, results, toolies);
        const second_reading frame(part::freeze, results, toolies);
        return {codes.shown(), pending.shown(), read_permanent_codes(results, toolies),
                freezing_code(frame.shown())};
    }

    static QString one_line(const QStringList& rows) {
        return QStringList(rows).join(" / ").replace('\n', "\\n").replace('\t', "\\t");
    }

    qsizetype logs_without_text() {
        return profile.db
            .retrieve_from_DB(
                "SELECT LOG_ID FROM LOGGIES WHERE LOG_ID NOT IN (SELECT LOG_ID FROM LOGGIES_DATA)")
            .size();
    }

    // As before the first operation, for the person and the log browser.
    void forget() {
        view.events.clear();
        ended = "no";
        profile.defaults.set(setting::log_runs, false);
        profile.defaults.set(setting::standard_reading, false);
        link.describe_protocol(QString()); // told once while the program runs
        for (const QStringList& log : profile.db.retrieve_from_DB("SELECT LOG_ID FROM LOGGIES"))
            profile.db.delete_a_DB_log(log[0].toInt());
    }

    // Every log with its chunks, dates left out.
    QString stored_logs() {
        static const QRegularExpression date("(?<=read:)[^-\n]*(?=--)|(?<=Read on: )[^\n]*");
        QStringList rows;
        for (const QStringList& log :
             profile.db.retrieve_from_DB("SELECT LOG_TYPE, INFO, LOG_ID FROM LOGGIES")) {
            rows += log[0] + '|' + log[1];
            for (const QStringList& chunk :
                 profile.db.retrieve_from_DB("SELECT DATA FROM LOGGIES_DATA WHERE LOG_ID=" + log[2]))
                rows += chunk[0];
        }
        return one_line(rows.replaceInStrings(date, "then"));
    }
};

} // namespace brivant
