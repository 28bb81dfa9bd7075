#include "app/logs/log_actions.h"

#include "app/logs/plots_popup.h"
#include "app/sharing/report_popup.h"
#include "base/work_a_moment.h"
#include "logs/log_texts.h"
#include "persistence/log_files.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QMimeData>
#include <QTextDocument>
#include <QUrl>
#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype most_reports = 20;         // shown at once in the place of an export
constexpr qsizetype longest_view = 512 * 1024; // characters, of several logs
constexpr qsizetype most_plots = 8;            // windows opened at once

QString not_shown(qsizetype logs, const char* kind) {
    return QStringLiteral("%1 more %2 are selected. Select fewer to see them.")
        .arg(logs)
        .arg(QLatin1String(kind));
}

} // namespace

log_actions::log_actions(QWidget& its_screen, const view_context& its_context, manage_logsDB& its_manager)
    : screen_widget(its_screen), context(its_context), manager(its_manager), strip(context.core) {}

QString log_actions::title_of(const log_header& log) {
    return QStringLiteral("%1, %2").arg(log.type, format_date_str(log.time_stamp));
}

void log_actions::view(const QList<log_header>& logs) {
    if (logs.size() == 1)
        return context.frame.pop_helpy(title_of(logs.first()), viewLog(context.core.toolies, logs.first()),
                                       QStringLiteral("empty.png"));
    QString html;
    qsizetype shown = 0;
    for (; shown < logs.size() && html.size() < longest_view; ++shown)
        html += QStringLiteral("<h4>%1</h4>").arg(title_of(logs.at(shown)).toHtmlEscaped()) +
                viewLog(context.core.toolies, logs.at(shown));
    if (shown < logs.size())
        html += QStringLiteral("<hr>") + not_shown(logs.size() - shown, "logs");
    context.frame.pop_helpy(QStringLiteral("%1 logs").arg(logs.size()), html, QStringLiteral("empty.png"));
}

void log_actions::plot(const QList<log_header>& logs) {
    QList<log_header> runs = logs;
    runs.removeIf([](const log_header& log) { return !isSampledLog(log.type); });
    if (runs.isEmpty())
        return context.window.show_message(
            QStringLiteral("Nothing to plot"),
            QStringLiteral(
                "Only live data runs can be drawn: Log, Fuel, O2 and Boost. View shows a report."));
    for (const log_header& log : runs.first(std::min(runs.size(), most_plots)))
        plot_this_log(screen_widget, context, log);
    if (runs.size() > most_plots)
        context.window.show_message(
            QStringLiteral("%1 of %2 runs are drawn").arg(most_plots).arg(runs.size()),
            QStringLiteral("No more windows are opened at once. Select the other runs "
                           "and press Plot again."));
}

void log_actions::handle_export(const QList<log_header>& logs, bool as_txt, const run_format* format) {
    QList<int> runs;
    QList<log_header> reports;
    for (const log_header& log : logs) {
        if (isSampledLog(log.type))
            runs += log.id;
        else
            reports += log;
    }
    if (!is_deleting())
        strip.start(runs, as_txt, format);
    if (!reports.isEmpty())
        show_reports(reports);
}

void log_actions::show_reports(const QList<log_header>& reports) {
    QString html;
    for (const log_header& log : reports.first(std::min(reports.size(), most_reports)))
        html += (html.isEmpty() ? QString() : QStringLiteral("<hr>")) + report_html(context.core.db, log);
    if (reports.size() > most_reports)
        html += QStringLiteral("<hr>") + not_shown(reports.size() - most_reports, "reports");
    QTextDocument document;
    document.setHtml(html);
    const shared_text shared{QStringLiteral("report"), QStringLiteral("report"),
                             [text = document.toPlainText()] { return text; }};
    (new report_popup(screen_widget, context, QStringLiteral("DTC SDF"), html, shared))->open();
}

void log_actions::copy(const QList<log_header>& logs) {
    if (logs.isEmpty())
        return context.window.show_message(QString(), QStringLiteral("Item(s) must be selected to proceed"));
    int missing = 0;
    QList<QUrl> files;
    for (const QString& file : manager.copied_files(logs, missing))
        files += QUrl::fromLocalFile(file);
    if (missing > 0)
        context.window.show_message(
            files.isEmpty() ? QStringLiteral("Nothing was copied") : QStringLiteral("Not all were copied"),
            (missing == 1 ? QStringLiteral("One of the selected logs has no file")
                          : QStringLiteral("%1 of the selected logs have no file").arg(missing)) +
                QStringLiteral(". Export writes the files of live data runs."));
    if (files.isEmpty())
        return;
    auto* content = new QMimeData;
    content->setUrls(files);
    QGuiApplication::clipboard()->setMimeData(content);
    context.window.show_status(QStringLiteral("Files on the clipboard: %1").arg(files.size()));
}

void log_actions::show_output_folder() {
    const QString folder = manager.output_folder();
    if (folder.isEmpty())
        context.window.show_message(QString(), QStringLiteral("No exported files yet"));
    else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        context.window.show_message(
            QStringLiteral("The folder cannot be shown"),
            QStringLiteral("No program for folders was found. It is %1.").arg(folder));
}

void log_actions::delete_logs(const QList<log_header>& logs) {
    if (is_deleting() || strip.is_running())
        return context.window.show_status(QStringLiteral("Wait until the work before is done; Esc stops it"));
    manager.deleteItems(logs, [this, logs] {
        QList<int> ids;
        for (const log_header& log : logs)
            ids += log.id;
        manager.stop_loading(); // a list that is being read would hold the database
        deletion = std::make_unique<log_deletion>(context.core.db, ids);
        delete_slice();
    });
}

void log_actions::delete_slice() {
    if (!work_a_moment([this] { return deletion->step(); }))
        return end_deletion();
    context.window.show_status(
        QStringLiteral("Deleting: %1 of %2").arg(deletion->deleted()).arg(deletion->asked()));
    next_slice = context.core.clock.one_shot(0, [this] { delete_slice(); });
    Q_EMIT deletion_changed();
}

void log_actions::end_deletion() {
    next_slice.reset();
    const auto ended = std::move(deletion);
    if (ended->has_failed())
        context.window.show_message(
            QStringLiteral("%1 of %2 logs were deleted").arg(ended->deleted()).arg(ended->asked()),
            context.core.db.problem());
    Q_EMIT deletion_changed();
}

void log_actions::stop() {
    strip.stop();
    if (deletion)
        end_deletion();
}

} // namespace brivant
