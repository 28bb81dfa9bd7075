#include "logs/manage_logsDB.h"

#include "base/string_table.h"
#include "persistence/export_names.h"
#include "persistence/log_files.h"

#include <QDir>
#include <QFile>

namespace brivant {

manage_logsDB::manage_logsDB(const car_state& its_car, database& store, const app_paths& its_paths,
                             screen& its_view)
    : state(its_car), db(store), paths(its_paths), view(its_view) {}

bool manage_logsDB::loadLogs() {
    stop_loading();
    logsArray.clear();
    vehicle.clear();
    total = 0;
    const bool read = db.for_each_row(
        fill(QStringLiteral("SELECT * FROM LOGGIES where veh_id=%d ORDER by time_stamp DESC "),
             {QString::number(state.cur_veh_id())}),
        [this](const QStringList& newest) {
            total = newest.value(0).toInt();
            return false;
        },
        database::listed);
    if (!read) {
        view.show_message(QStringLiteral("The logs cannot be read"), db.problem());
        return false;
    }
    vehicle = name_of_vehicle();
    if (total > 0)
        rows_left = std::make_unique<row_cursor>(db.path(), chosen.statement(state.cur_veh_id()));
    show_filtered_status();
    return true;
}

bool manage_logsDB::load_more(int rows) {
    for (int i = 0; rows_left && i < rows; ++i) {
        const auto row = rows_left->next(database::listed);
        if (!row) {
            if (rows_left->has_failed())
                view.show_message(
                    QStringLiteral("The list of logs is not complete"),
                    QStringLiteral("The database %1 cannot be read to its end: %2. Press F5 to try again.")
                        .arg(db.path(), rows_left->reason()));
            stop_loading();
            show_filtered_status();
        } else if (log_header_of(*row)) { // else nothing could be done with it
            logsArray += fill(QStringLiteral("%@|%@|%@|%@|%@"),
                              {row->value(0), row->value(1), row->value(2), row->value(3), row->value(4)});
        }
    }
    return is_loading();
}

log_header manage_logsDB::log_at(qsizetype row) const {
    const QString& text = logsArray.at(row);
    const qsizetype info = text.indexOf(u'|', text.indexOf(u'|', text.indexOf(u'|') + 1) + 1) + 1;
    const qsizetype stamp = text.lastIndexOf(u'|'); // the description may hold a bar itself
    return {text.section(u'|', 0, 0).toInt(), text.section(u'|', 1, 1).toInt(), text.section(u'|', 2, 2),
            text.sliced(info, std::max<qsizetype>(0, stamp - info)), text.sliced(stamp + 1)};
}

QString manage_logsDB::name_of_vehicle() {
    return db
        .retrieve_from_DB(fill(QStringLiteral("SELECT * FROM VEHICLES where veh_id=%d"),
                               {QString::number(state.cur_veh_id())}),
                          database::listed)
        .value(0)
        .value(1);
}

QString manage_logsDB::count_text() const {
    return fill(QStringLiteral("%d Logs"), {QString::number(logsArray.size())});
}

void manage_logsDB::show_filtered_status() {
    view.show_status(is_loading() ? QStringLiteral("Reading the list of logs ...")
                                  : print_filtered_status(chosen.name(), logsArray.size(), total));
}

// A list that nothing shortens needs no count beside the total.
QString manage_logsDB::print_filtered_status(const QString& this_filter, qsizetype log_cnt,
                                             int total_logs) const {
    const QString count = QString::number(log_cnt);
    const QString all = QString::number(total_logs);
    switch (chosen.this_log_filter) {
    case log_filter::show_all: return fill(QStringLiteral("%@ (%d total)"), {this_filter, all});
    case log_filter::last_10_reads:
        return fill(QStringLiteral("%@(%d) (%d total)"), {this_filter, count, all});
    default: return fill(QStringLiteral("%@(%d)  (%d total)"), {this_filter, count, all});
    }
}

// --- what is done with the selected ones -------------------------------------------------------------------

void manage_logsDB::deleteItems(const QList<log_header>& selectedLogs, std::function<void()> yes) {
    if (selectedLogs.isEmpty())
        return view.show_message(QString(), localised(QStringLiteral("DLG_ITEMS_MUST_B_SELECTED")));
    const log_header& first = selectedLogs.first();
    const QString what = selectedLogs.size() == 1
                             ? QStringLiteral("%1, %2").arg(first.type, format_date_str(first.time_stamp))
                             : fill(QStringLiteral("%d Logs"), {QString::number(selectedLogs.size())});
    view.ask_yes_no(localised(QStringLiteral("DLG_ARE_U_SURE_DELETE_ITEMS")),
                    what + u'\n' + localised(QStringLiteral("LBL_CANNOT_B_UNDONE")),
                    [yes = std::move(yes)](bool is_yes) {
                        if (is_yes)
                            yes();
                    });
}

QStringList manage_logsDB::files_of(const log_header& log) const {
    QStringList files;
    for (const QString& folder : {paths.application_folder, paths.documents}) {
        for (const bool as_txt : {false, true}) {
            const QString file =
                fill(QStringLiteral("%@/loggies/%@"), {folder, numbered_export_file_name(db, log, as_txt)});
            if (QFile::exists(file))
                files += file;
        }
        if (!files.isEmpty())
            break;
    }
    return files;
}

QStringList manage_logsDB::copied_files(const QList<log_header>& selectedLogs, int& missing) const {
    QStringList files;
    missing = 0;
    for (const log_header& log : selectedLogs) {
        const QStringList its_files = files_of(log);
        files += its_files;
        missing += its_files.isEmpty();
    }
    return files;
}

QString manage_logsDB::output_folder() const {
    const QString folder = paths.documents + QStringLiteral("/loggies");
    return QDir(folder).exists() ? folder : QString();
}

} // namespace brivant
