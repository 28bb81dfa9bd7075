#include "terminal/update_run.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace {

const QString download_word = QStringLiteral("download");

void print(FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

} // namespace

update_run::update_run(program_core& its_core) : core(its_core) {
    connect(&updates, &update_check::finished, this, &update_run::step_done);
    connect(&updates, &update_check::progress, this, &update_run::show_progress);
}

QString update_run::wrong_words(const QStringList& words) {
    return words.isEmpty() || words == QStringList(download_word)
               ? QString()
               : QStringLiteral("The only word after update-check is: download.");
}

void update_run::start() {
    signals_ = std::make_unique<stop_signals>([this] { updates.stop(); });
    updates.check(core.defaults.value(setting::update_server));
}

void update_run::step_done(const QString& problem) {
    const bool wants_archive = core.options.arguments.contains(download_word);
    if (problem.isEmpty() && wants_archive && !fetching && updates.is_newer()) {
        fetching = true;
        return updates.download(core.paths.documents);
    }
    if (last_percent >= 0)
        print(stderr, QStringLiteral("\n"));
    print_result(problem);
    Q_EMIT finished(problem.isEmpty() ? 0 : 1);
}

void update_run::show_progress(qint64 received, qint64 total) {
    const int percent = total > 0 ? static_cast<int>(100 * received / total) : -1;
    if (percent != last_percent)
        print(stderr, QStringLiteral("\r%1 of %2 bytes").arg(received).arg(total));
    last_percent = percent;
}

void update_run::print_result(const QString& problem) {
    const QString newest = updates.found() ? updates.found()->version.text() : QString();
    if (core.options.json) {
        const QJsonObject object{{"version", QStringLiteral(BV_VERSION)},
                                 {"newest", newest},
                                 {"is_newer", updates.is_newer()},
                                 {"file", updates.file()},
                                 {"problem", problem},
                                 {"done", problem.isEmpty()}};
        print(stdout, QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n');
    } else if (!updates.file().isEmpty()) {
        print(stdout, updates.file() + u'\n');
    } else if (updates.found()) {
        print(stdout, updates.is_newer()
                          ? QStringLiteral("Version %1 is there; this is " BV_VERSION ".\n").arg(newest)
                          : QStringLiteral("This is the newest version, " BV_VERSION ".\n"));
    }
    if (updates.found() && updates.is_newer() && updates.file().isEmpty() && problem.isEmpty())
        print(stderr,
              QStringLiteral("update-check download fetches it into %1.\n").arg(core.paths.documents));
    if (problem.isEmpty())
        return;
    print(stderr, problem + u'\n');
    if (!core.defaults.has(setting::update_server))
        print(stderr, QStringLiteral("settings set %1 https://... names one.\n")
                          .arg(setting::update_server.file_key()));
}
