#pragma once

#include "diagnostics/readCodes.h"
#include "tests/support/conversation.h"

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
        actions["stop"] = [this](const QString&) { controller.stop(); };
        facts["codes"] = [this] { return results.codesReadArray.join(", "); };
        facts["misfire"] = [this] { return results.misfireArray.join(", "); };
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
    }
};
