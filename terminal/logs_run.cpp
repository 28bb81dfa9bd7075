#include "terminal/logs_run.h"

#include "base/string_table.h"
#include "logs/log_texts.h"
#include "persistence/log_files.h"
#include "persistence/log_import.h"
#include "persistence/recovery.h"
#include "persistence/stored_logs.h"
#include "persistence/vehicles.h"
#include "terminal/output.h"
#include "terminal/run_figures.h"
#include "terminal/shown_run.h"

#include <QCoreApplication>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <unistd.h>

namespace brivant {

namespace {

constexpr int lines_a_slice = 2000;

// The number of a log, 0 for another word.
int number_of(const QString& word) {
    bool is_number = false;
    const int number = word.toInt(&is_number);
    return is_number && number > 0 ? number : 0;
}

// A text as JSON, quotes and all.
QByteArray quoted(const QString& text) {
    return compact(QJsonArray{text}).sliced(1).chopped(1);
}

QHash<int, QString> names_of(const QList<vehicle>& vehicles) {
    QHash<int, QString> names;
    for (const vehicle& one : vehicles)
        names.insert(one.id, one.name);
    return names;
}

QJsonObject as_json(const log_header& log, const QString& vehicle_name) {
    return {
        {"id", log.id},     {"vehicle", log.veh_id}, {"vehicle_name", vehicle_name},
        {"type", log.type}, {"info", log.info},      {"time", gmt_date_str_2_local_date_str(log.time_stamp)}};
}

} // namespace

logs_run::logs_run(program_core& its_core) : terminal_run(its_core), view(core.options.yes) {}

QString logs_run::wrong_words(const QStringList& words, bool yes) {
    const QString what = words.value(0);
    const QStringList numbers = words.mid(1);
    const bool all_are_numbers = std::all_of(numbers.begin(), numbers.end(), number_of);
    if (what == QLatin1String("list") && numbers.isEmpty())
        return {};
    const bool is_of_one = QStringList{"show", "export", "figures"}.contains(what);
    if (is_of_one && numbers.size() == 1 && all_are_numbers)
        return {};
    if (what == QLatin1String("import") && words.size() == 2)
        return {};
    if (what != QLatin1String("delete") || numbers.isEmpty() || !all_are_numbers)
        return QStringLiteral(
            "The words after logs are: list; show, export, figures or delete and the number of a log, for "
            "delete also several; import and a file.");
    return yes || isatty(STDIN_FILENO)
               ? QString()
               : QStringLiteral(
                     "logs delete cannot be undone, and there is no terminal to ask at: say that you want "
                     "it with --yes.");
}

void logs_run::start() {
    const QString& what = core.options.arguments.first();
    const bool can_be_changed = core.db.init_DB() && core.db.add_own_parts();
    if (can_be_changed) {
        if (const QString done = put_in_order(core.db); !done.isEmpty())
            tell(done + u'\n');
    } else if (what == QLatin1String("delete") || what == QLatin1String("import") || !can_be_read()) {
        return end(core.db.problem(), false);
    }
    if (what == QLatin1String("list"))
        return list();
    if (what == QLatin1String("import"))
        return import_file(core.options.arguments.at(1));
    QList<log_header> logs;
    for (const QString& word : core.options.arguments.sliced(1)) {
        const auto log = log_with_id(core.db, number_of(word));
        if (!log)
            return end(QStringLiteral("There is no log with the number %1.").arg(word), false);
        logs += *log;
    }
    if (what == QLatin1String("delete"))
        return ask_deletion(logs);
    if (what == QLatin1String("show"))
        return show(logs.first());
    if (what == QLatin1String("figures"))
        return show_figures(logs.first());
    if (!isSampledLog(logs.first().type))
        return show_text(logs.first()); // a report is shown, not exported
    begin_export(logs.first().id);
}

bool logs_run::can_be_read() {
    return core.db.for_each_row(QStringLiteral("SELECT LOG_ID FROM LOGGIES"),
                                [](const QStringList&) { return false; });
}

void logs_run::list() {
    const QHash<int, QString> vehicles = names_of(all_vehicles(core.db));
    QJsonArray rows;
    const bool read = core.db.for_each_row(
        QStringLiteral("SELECT * FROM LOGGIES ORDER by time_stamp DESC "),
        [&](const QStringList& row) {
            const auto log = log_header_of(row);
            if (!log)
                return true;
            const QString name = vehicles.value(log->veh_id);
            if (core.options.json)
                rows += as_json(*log, name);
            else
                print(QStringList{QString::number(log->id).rightJustified(6),
                                  gmt_date_str_2_local_date_str(log->time_stamp), log->type.leftJustified(8),
                                  name.isEmpty() ? QStringLiteral("vehicle %1").arg(log->veh_id) : name,
                                  log->info}
                          .join(QLatin1String("  ")) +
                      u'\n');
            return true;
        },
        database::listed);
    if (core.options.json)
        print_json(QJsonObject{{"logs", rows}});
    end(read ? QString() : core.db.problem(), read);
}

// For what changes something, and goes on in slices. A log that is only shown may be broken off anywhere.
void logs_run::end_in_order() {
    on_stop([this] {
        if (exporting)
            exporting->stop();
        end(deletion ? QStringLiteral("Stopped: %1 of %2 logs are deleted")
                           .arg(deletion->deleted())
                           .arg(deletion->asked())
                     : QStringLiteral("Stopped"),
            false);
    });
}

void logs_run::show(const log_header& log) {
    if (core.options.json)
        return show_as_json(log);
    if (!isSampledLog(log.type))
        return show_text(log);
    const bool read = print_run(core.toolies, log);
    end(read ? QString() : core.db.problem(), read);
}

void logs_run::show_figures(const log_header& log) {
    if (!isSampledLog(log.type))
        return end(QStringLiteral("Log %1 is a report: only a run has figures.").arg(log.id), false);
    const QString problem = print_figures(core.toolies, log, core.options.json);
    end(problem, problem.isEmpty());
}

void logs_run::show_text(const log_header& log) {
    const bool read = each_chunk(core.db, log.id, [&](const QStringList& row) {
        print(row.value(chunk_data) + u'\n');
        return true;
    });
    print(standard_part_of(core.toolies, log));
    end(read ? QString() : core.db.problem(), read);
}

void logs_run::show_as_json(const log_header& log) {
    print(compact(as_json(log, names_of(all_vehicles(core.db)).value(log.veh_id))).chopped(1) +
          ",\"lines\":[");
    bool is_first = true;
    bool read = each_chunk(core.db, log.id, [&](const QStringList& row) {
        print((is_first ? "" : ",") + quoted(row.value(chunk_data)));
        is_first = false;
        return true;
    });
    print(QStringLiteral("]"));
    if (isSampledLog(log.type))
        read = print_run_as_json(core.toolies, log) && read;
    print(QStringLiteral("}\n"));
    end(read ? QString() : core.db.problem(), read);
}

void logs_run::ask_deletion(const QList<log_header>& logs) {
    end_in_order();
    QList<int> ids;
    QString names;
    for (const log_header& log : logs) {
        ids += log.id;
        names += QStringLiteral("%1  %2  %3\n")
                     .arg(log.id)
                     .arg(gmt_date_str_2_local_date_str(log.time_stamp), log.type);
    }
    view.ask_yes_no(localised(QStringLiteral("DLG_ARE_U_SURE_DELETE_ITEMS")),
                    names + localised(QStringLiteral("LBL_CANNOT_B_UNDONE")), [this, ids](bool yes) {
                        if (!yes)
                            return end(QStringLiteral("Nothing was deleted"), false);
                        deletion = std::make_unique<log_deletion>(core.db, ids);
                        next_deletion();
                    });
}

void logs_run::next_deletion() {
    if (deletion->step()) {
        slice = core.clock.one_shot(0, [this] { next_deletion(); });
        return;
    }
    if (core.options.json)
        print_json(QJsonObject{{"deleted", deletion->deleted()}, {"asked", deletion->asked()}});
    const QString sentence =
        QStringLiteral("Deleted: %1 of %2 logs").arg(deletion->deleted()).arg(deletion->asked());
    end(deletion->has_failed() ? sentence + u'\n' + core.db.problem() : sentence, !deletion->has_failed());
}

void logs_run::begin_export(int log_id) {
    end_in_order();
    exporting =
        std::make_unique<log_export>(core.db, lists,
                                     export_settings{.documents = core.paths.documents,
                                                     .application_folder = core.paths.application_folder,
                                                     .units = core.toolies.units(),
                                                     .by_standard = core.toolies.standard_reading(),
                                                     .time_column = core.defaults.value(setting::time_stamps),
                                                     .format = run_format_of(core.options.format)});
    if (!exporting->begin(log_id, core.options.as_text))
        return end(exporting->problem(), false);
    next_slice();
}

void logs_run::next_slice() {
    const bool more = exporting->step(lines_a_slice);
    if (exporting->lines_announced() > 0) {
        const int percent = static_cast<int>(100 * exporting->lines_written() / exporting->lines_announced());
        if (percent != last_percent)
            tell_over(QStringLiteral("%1 of %2 lines")
                          .arg(exporting->lines_written())
                          .arg(exporting->lines_announced()));
        last_percent = percent;
    }
    if (more) {
        slice = core.clock.one_shot(0, [this] { next_slice(); });
        return;
    }
    tell(QStringLiteral("\n"));
    if (!exporting->succeeded())
        return end(exporting->problem(), false);
    if (core.options.json)
        print_json(QJsonObject{{"file", exporting->path()}, {"lines", exporting->lines_written()}});
    else
        print(exporting->path() + u'\n');
    end(QStringLiteral("Exported to loggies folder in Documents\n\n%1").arg(exporting->path()), true);
}

void logs_run::import_file(const QString& file) {
    bool is_stopped = false;
    on_stop([&is_stopped] { is_stopped = true; });
    const auto vehicle = vehicle_or_first(core.db, core.defaults.value(setting::current_vehicle));
    if (!vehicle)
        return end(QStringLiteral("There is no vehicle that the run could belong to."), false);
    log_import importing(core.db, lists);
    const bool done = importing.take(file, vehicle->id, [&](int percent) {
        if (std::exchange(last_percent, percent) != percent)
            tell_over(QStringLiteral("%1 % of the file").arg(percent));
        QCoreApplication::processEvents();
        return !is_stopped;
    });
    on_stop([] {}); // the end is near
    if (last_percent >= 0)
        tell(QStringLiteral("\n"));
    if (!done)
        return end(importing.problem(), false);
    if (core.options.json)
        print_json(QJsonObject{{"id", importing.log_id()},
                               {"sweeps", importing.sweeps()},
                               {"values_left_out", importing.values_left_out()}});
    else
        print(QStringLiteral("%1\n").arg(importing.log_id()));
    QString sentence =
        QStringLiteral("Imported as log %1: %2 sweeps").arg(importing.log_id()).arg(importing.sweeps());
    if (importing.values_left_out() > 0)
        sentence += QStringLiteral("\n%1 values could not be taken: no reply of their PID has them")
                        .arg(importing.values_left_out());
    end(sentence, true);
}

void logs_run::end(const QString& sentence, bool done) {
    slice.reset();
    const bool is_printed = is_all_printed();
    if (!sentence.isEmpty())
        tell(sentence + u'\n');
    if (!is_printed)
        tell(QStringLiteral("The output cannot be written.\n"));
    Q_EMIT finished(done && is_printed ? 0 : 1);
}

} // namespace brivant
