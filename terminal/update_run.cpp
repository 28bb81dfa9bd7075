#include "terminal/update_run.h"

#include "terminal/output.h"

#include <QJsonObject>

namespace brivant {

namespace {

const QString download_word = QStringLiteral("download");

} // namespace

update_run::update_run(program_core& its_core) : terminal_run(its_core) {
    connect(&updates, &update_check::finished, this, &update_run::step_done);
    connect(&updates, &update_check::progress, this, &update_run::show_progress);
}

QString update_run::wrong_words(const QStringList& words) {
    return words.isEmpty() || words == QStringList(download_word)
               ? QString()
               : QStringLiteral("The only word after update-check is: download.");
}

void update_run::start() {
    on_stop([this] { updates.stop(); });
    updates.check(core.defaults.value(setting::update_server));
}

void update_run::step_done(const QString& problem) {
    const bool wants_archive = core.options.arguments.contains(download_word);
    if (problem.isEmpty() && wants_archive && !fetching && updates.is_newer()) {
        fetching = true;
        return updates.download(core.paths.documents);
    }
    if (last_percent >= 0)
        tell(QStringLiteral("\n"));
    print_result(problem);
    Q_EMIT finished(problem.isEmpty() ? 0 : 1);
}

void update_run::show_progress(qint64 received, qint64 total) {
    const int percent = total > 0 ? static_cast<int>(100 * received / total) : -1;
    if (percent != last_percent)
        tell_over(QStringLiteral("%1 of %2 bytes").arg(received).arg(total));
    last_percent = percent;
}

void update_run::print_result(const QString& problem) {
    const QString newest = updates.found() ? updates.found()->version.toString() : QString();
    if (core.options.json) {
        print_json(QJsonObject{{"version", QStringLiteral(BV_VERSION)},
                               {"newest", newest},
                               {"is_newer", updates.is_newer()},
                               {"file", updates.file()},
                               {"problem", problem},
                               {"done", problem.isEmpty()}});
    } else if (!updates.file().isEmpty()) {
        print(updates.file() + u'\n');
    } else if (updates.found()) {
        print(updates.is_newer()
                  ? QStringLiteral("Version %1 is there; this is " BV_VERSION ".\n").arg(newest)
                  : QStringLiteral("This is the newest version, " BV_VERSION ".\n"));
    }
    if (updates.found() && updates.is_newer() && updates.file().isEmpty() && problem.isEmpty())
        tell(QStringLiteral("update-check download fetches it into %1.\n").arg(core.paths.documents));
    if (problem.isEmpty())
        return;
    tell(problem + u'\n');
    if (!core.defaults.has(setting::update_server))
        tell(QStringLiteral("settings set %1 https://... names one.\n")
                 .arg(setting::update_server.file_key()));
}

} // namespace brivant
