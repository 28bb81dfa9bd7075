// One job of the program in the database of a profile, for a test that ends it suddenly or fills the disk:
//   database_job JOB PROFILE
// Exit status: 0 when the job says that it is done, 1 when it says that it is not, 2 for an unknown job.

#include "base/console_log.h"
#include "diagnostics/session_log.h"
#include "livedata/run_log.h"
#include "operations/operation_code.h"
#include "persistence/deletions.h"
#include "persistence/log_import.h"
#include "persistence/recovery.h"
#include "shell/program_core.h"

#include <QGuiApplication>
#include <functional>

using namespace brivant;

namespace {

bool store_report(program_core& core) {
    session_log log(core.paths, core.db);
    log.work_out_log_file(op_read_codes, true, true);
    return log
        .store({"DTC", "Codes and flags", "the report\n", "the raw replies"},
               {{"03", {"7E8 04 43 01 01 33", 6, true}, 12}}, 1)
        .isEmpty();
}

bool store_run(program_core& core) {
    run_log log(core.db, core.clock, core.paths);
    log.create_row(op_log_run, 1);
    bool are_stored = log.is_on();
    for (int sweep = 0; sweep < 3; ++sweep)
        are_stored &= log.sweep_complete("410D3C,410C1AF8", 1790000000000, {100.0 * sweep, {12.5, 40.25}});
    log.end();
    return are_stored;
}

template <class deletion>
bool is_deleted(deletion&& going) {
    while (going.step()) {
    }
    return !going.has_failed();
}

bool import_run(program_core& core) {
    return log_import(core.db, core.toolies.lists())
        .take(core.paths.documents + QStringLiteral("/run.csv"), 2, [](int) { return true; });
}

bool add_vehicle(program_core& core) {
    QImage photo(8, 8, QImage::Format_RGB32);
    photo.fill(Qt::red);
    return core.vehicles.saveCurCarVals(-1, {"O'Hara's van", "2012", "2.4"}, photo).id > 0;
}

bool start(program_core& core) {
    if (!core.db.init_DB() || !core.db.add_own_parts())
        return false;
    put_in_order(core.db);
    return core.db.problem().isEmpty();
}

const QHash<QString, std::function<bool(program_core&)>> jobs{
    {"start", start},
    {"report", store_report},
    {"run", store_run},
    {"import", import_run},
    {"vehicle", add_vehicle},
    {"delete-log", [](program_core& core) { return is_deleted(log_deletion(core.db, {1})); }},
    {"delete-vehicle", [](program_core& core) { return is_deleted(vehicle_deletion(core.db, 2)); }}};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    silence_console_log();
    const QStringList words = QGuiApplication::arguments();
    const auto job = jobs.constFind(words.value(1));
    if (words.size() != 3 || job == jobs.constEnd())
        return 2;
    launch_options options;
    options.profile = words.at(2);
    program_core core(options);
    return (*job)(core) ? 0 : 1;
}
