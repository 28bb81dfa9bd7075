#pragma once

#include "base/app_paths.h"
#include "diagnostics/report.h"
#include "persistence/stored_replies.h"

#include <QFile>

namespace brivant {

// What an operation leaves behind while logging is on: a session file in the application folder, and a log in
// the database. A file that cannot be opened is left out; the database still gets its log.
class session_log {
public:
    session_log(const app_paths& its_paths, database& store) : paths(its_paths), db(store) {}

    // Opens the session file of the operation. Without logging (`do_the_log` false) nothing is written.
    void work_out_log_file(int operation, bool do_the_log, bool metric);
    // Writes the text as it stands.
    void append_to_log(const QString& text);
    // Writes the report to the file and stores it, with the replies behind it, for the vehicle. A sentence
    // for the person when it could not be stored, else "".
    QString store(const diagnostic_report& report, const QList<stored_reply>& replies, int veh_id);
    void close();

    bool is_on() const { return do_the_log; }
    const QString& cur_log_file_name() const { return file_name; }

private:
    bool insert(const diagnostic_report& report, const QList<stored_reply>& replies, int veh_id);

    const app_paths& paths;
    database& db;
    QFile log_out_file;
    QString file_name;
    bool do_the_log = false;
};

} // namespace brivant
