#include "terminal/logs_run.h"

#include "persistence/log_files.h"
#include "persistence/stored_logs.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace {

constexpr int lines_a_slice = 2000;

void print(FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

bool is_sampled(const QString& type) {
    return type == QLatin1String("Log") || type == QLatin1String("Boost") || type == QLatin1String("O2") ||
           type == QLatin1String("Fuel");
}

} // namespace

logs_run::logs_run(program_core& its_core) : core(its_core) {}

QString logs_run::wrong_words(const QStringList& words) {
    const QString what = words.value(0);
    bool is_number = false;
    words.value(1).toInt(&is_number);
    if (what == QLatin1String("list") && words.size() == 1)
        return {};
    if (what == QLatin1String("export") && is_number && words.size() == 2)
        return {};
    return QStringLiteral("The words after logs are: list, or export and the number of a log.");
}

void logs_run::start() {
    signals_ = std::make_unique<stop_signals>([this] {
        if (exporting)
            exporting->stop();
        end(QStringLiteral("Stopped"), false);
    });
    if (!core.db.init_DB())
        return end(core.db.problem(), false);
    if (core.options.arguments.first() == QLatin1String("list"))
        return list();
    const int log_id = core.options.arguments.value(1).toInt();
    const auto log = log_with_id(core.db, log_id);
    if (!log)
        return end(QStringLiteral("There is no log with the number %1.").arg(log_id), false);
    if (!is_sampled(log->type))
        return show_text(log_id); // a report is shown, not exported
    begin_export(log_id);
}

void logs_run::list() {
    QJsonArray rows;
    const bool read = core.db.for_each_row(
        QStringLiteral("SELECT * FROM LOGGIES ORDER by time_stamp DESC "), [&](const QStringList& row) {
            if (const auto log = log_header_of(row)) {
                if (core.options.json)
                    rows += QJsonObject{{"id", log->id},
                                        {"vehicle", log->veh_id},
                                        {"type", log->type},
                                        {"info", log->info},
                                        {"time", gmt_date_str_2_local_date_str(log->time_stamp)}};
                else
                    print(stdout, QStringLiteral("%1  %2  %3  %4\n")
                                      .arg(log->id, 6)
                                      .arg(gmt_date_str_2_local_date_str(log->time_stamp))
                                      .arg(log->type, -8)
                                      .arg(log->info));
            }
            return true;
        });
    if (core.options.json)
        print(stdout, QString::fromUtf8(QJsonDocument(QJsonObject{{"logs", rows}}).toJson(QJsonDocument::Compact)) +
                          u'\n');
    end(read ? QString() : core.db.problem(), read);
}

void logs_run::show_text(int log_id) {
    QString text;
    const bool read = core.db.for_each_row(
        QStringLiteral("SELECT * FROM LOGGIES_DATA WHERE LOG_ID=%1").arg(log_id), [&](const QStringList& row) {
            print(stdout, row.value(1) + u'\n');
            return true;
        });
    end(read ? QString() : core.db.problem(), read);
}

void logs_run::begin_export(int log_id) {
    const bool metric = core.defaults.boolean(QStringLiteral("BV_metric_units"), false);
    exporting = std::make_unique<log_export>(
        core.db, lists,
        export_settings{.documents = core.paths.documents,
                        .application_folder = core.paths.application_folder,
                        .units = metric ? unit_system::metric : unit_system::imperial,
                        .time_column = core.defaults.boolean(QStringLiteral("BV_log_timeStamp"), false)});
    if (!exporting->begin(log_id, core.options.as_text))
        return end(exporting->problem(), false);
    next_slice();
}

void logs_run::next_slice() {
    const bool more = exporting->step(lines_a_slice);
    if (exporting->lines_announced() > 0) {
        const int percent = static_cast<int>(100 * exporting->lines_written() / exporting->lines_announced());
        if (percent != last_percent)
            print(stderr, QStringLiteral("\r%1 of %2 lines").arg(exporting->lines_written()).arg(exporting->lines_announced()));
        last_percent = percent;
    }
    if (more) {
        slice = core.clock.one_shot(0, [this] { next_slice(); });
        return;
    }
    print(stderr, QStringLiteral("\n"));
    if (!exporting->succeeded())
        return end(exporting->problem(), false);
    print(stdout, exporting->path() + u'\n');
    end(QStringLiteral("Exported to loggies folder in Documents\n\n%1").arg(exporting->path()), true);
}

void logs_run::end(const QString& sentence, bool done) {
    slice.reset();
    if (!sentence.isEmpty())
        print(stderr, sentence + u'\n');
    Q_EMIT finished(done ? 0 : 1);
}
