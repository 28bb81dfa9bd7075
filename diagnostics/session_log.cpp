#include "diagnostics/session_log.h"

#include "base/console_log.h"
#include "base/printable.h"
#include "persistence/log_files.h"

namespace brivant {

void session_log::work_out_log_file(int operation, bool logging, bool metric) {
    close();
    do_the_log = logging;
    if (!do_the_log)
        return;
    file_name = work_out_log_fname_for_mode(paths.application_folder, operation, metric,
                                            QDateTime::currentDateTime()) +
                QStringLiteral(".txt");
    log_out_file.setFileName(file_name);
    if (!log_out_file.open(QIODevice::Append))
        console_log(QStringLiteral("work_out_log_file: %1: %2").arg(file_name, log_out_file.errorString()));
}

void session_log::append_to_log(const QString& text) {
    if (do_the_log && log_out_file.isOpen() && log_out_file.write(printable(text.toUtf8())) < 0)
        console_log(QStringLiteral("append_to_log: %1").arg(log_out_file.errorString()));
}

QString session_log::store(const diagnostic_report& report, const QList<stored_reply>& replies, int veh_id) {
    if (!do_the_log)
        return {};
    append_to_log(report.text);
    if (log_out_file.isOpen() && !log_out_file.flush())
        console_log(QStringLiteral("append_to_log: %1").arg(log_out_file.errorString()));
    if (!db.init_DB())
        return db.problem();
    if (db.change([&](sqlite_connection&) { return insert(report, replies, veh_id); }))
        return {};
    console_log(QStringLiteral("work_out_text_4_log: the report was not stored: %1").arg(db.problem()));
    return db.problem();
}

bool session_log::insert(const diagnostic_report& report, const QList<stored_reply>& replies, int veh_id) {
    const int log_id = db.add_2_LOG_DB(report.title, veh_id, report.description);
    // The statement takes its values as they are: each single quote is doubled, once.
    const auto quoted = [](QString text) { return text.replace(u'\'', QStringLiteral("''")); };
    if (log_id <= 0 || db.append_2_LOG_DB(quoted(report.text), QString(), 0, log_id) <= 0)
        return false;
    if (!report.raw.isEmpty() && db.append_2_LOG_DB(quoted(report.raw), QString(), 1, log_id) <= 0)
        return false;
    // More replies than are ever read again: the report stands without.
    return store_replies(db, log_id, replies) || db.problem().isEmpty();
}

void session_log::close() {
    const bool was_open = log_out_file.isOpen();
    log_out_file.close();
    if (was_open && log_out_file.size() == 0)
        log_out_file.remove(); // the operation had nothing to say
    do_the_log = false;
}

} // namespace brivant
