#include "updates/update_check.h"

#include <QDir>

namespace brivant {

namespace {

constexpr qint64 slice_size = 1024 * 1024; // a few milliseconds

} // namespace

update_check::update_check(const QString& running, const server_patience& patience, QObject* parent)
    : QObject(parent), own(QVersionNumber::fromString(running).normalized()), get(patience) {
    connect(&get, &bounded_get::came, this, &update_check::take_bytes);
    connect(&get, &bounded_get::ended, this, &update_check::answer_ended);
    connect(&slices, &QTimer::timeout, this, &update_check::check_a_slice);
}

update_check::~update_check() {
    blockSignals(true);
    stop();
}

void update_check::check(const QString& server) {
    if (is_running())
        return;
    newest.reset();
    kept.clear();
    received.clear();
    if (server.trimmed().isEmpty())
        return Q_EMIT finished(QStringLiteral("No update server is set, so none was asked."));
    if (const QString problem = update_server_problem(server); !problem.isEmpty())
        return Q_EMIT finished(problem);
    get.start(version_file_address(server), version_file::largest,
              QStringLiteral("What the update server sent is no version file: it is too large."));
}

void update_check::download(const QString& folder) {
    if (is_running() || !newest)
        return;
    kept.clear();
    archive = std::make_unique<whole_file>(QDir(folder).filePath(newest->archive_name),
                                           whole_file::existing::is_refused);
    if (!archive->begin())
        return end(cannot_be_written());
    get.start(newest->archive, newest->size,
              QStringLiteral("The archive is larger than the version file says, and was not kept."));
}

void update_check::take_bytes(const QByteArray& body) {
    if (!archive)
        received += body;
    else if (archive->write(body) != body.size())
        return end(cannot_be_written());
    Q_EMIT progress(get.received(), archive ? newest->size : 0);
}

QString update_check::cannot_be_written() const {
    return QStringLiteral("%1 cannot be written: %2.").arg(archive->name(), archive->errorString());
}

void update_check::answer_ended(bool is_whole, const QString& problem) {
    if (archive)
        archive_is_here(is_whole, problem);
    else
        take_version_file(is_whole || !problem.isEmpty()
                              ? problem
                              : QStringLiteral("What the update server sent was cut off. Try again."));
}

void update_check::take_version_file(QString problem) {
    if (problem.isEmpty())
        newest = version_file::of(received, get.address(), problem);
    end(problem);
}

void update_check::archive_is_here(bool is_whole, QString problem) {
    if (problem.isEmpty() && (!is_whole || get.received() < newest->size))
        problem = QStringLiteral("The archive was cut off after %1 of %2 bytes, and was not kept. Try again.")
                      .arg(get.received())
                      .arg(newest->size);
    if (problem.isEmpty() && !archive->bring_to_disk())
        problem = cannot_be_written();
    if (!problem.isEmpty())
        return end(problem);
    written.setFileName(archive->part_name());
    if (!written.open(QIODevice::ReadOnly))
        return end(QStringLiteral("%1 cannot be read: %2.").arg(written.fileName(), written.errorString()));
    digest.reset();
    slices.start(0);
}

void update_check::check_a_slice() {
    const QByteArray slice = written.read(slice_size);
    digest.addData(slice);
    if (slice.isEmpty())
        keep_archive();
}

void update_check::keep_archive() {
    if (digest.result() != newest->sha256)
        return end(QStringLiteral("The archive is not the one that the version file tells of (its SHA-256 is "
                                  "another), and was not kept."));
    if (!archive->commit())
        return end(cannot_be_written());
    kept = archive->name();
    end({});
}

void update_check::stop() {
    if (is_running())
        end(QStringLiteral("Stopped. Nothing was kept."));
}

void update_check::end(const QString& problem) {
    get.stop();
    slices.stop();
    written.close();
    archive.reset();
    received.clear();
    Q_EMIT finished(problem);
}

} // namespace brivant
