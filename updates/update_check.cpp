#include "updates/update_check.h"

#include <QDir>

namespace brivant {

namespace {

constexpr int most_redirects = 4;
constexpr int first_success = 200;
constexpr qint64 buffer_size = 256 * 1024;

} // namespace

update_check::update_check(const QString& running, int patience_ms, QObject* parent)
    : QObject(parent), own(QVersionNumber::fromString(running).normalized()) {
    patience.setSingleShot(true);
    patience.setInterval(patience_ms);
    connect(&patience, &QTimer::timeout, this, [this] {
        broken_off = QStringLiteral("The update server does not answer. Check the connection to the internet "
                                    "and try again.");
        reply->abort();
    });
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
    if (server.trimmed().isEmpty())
        return Q_EMIT finished(QStringLiteral("No update server is set, so none was asked."));
    if (const QString problem = update_server_problem(server); !problem.isEmpty())
        return Q_EMIT finished(problem);
    ask(version_file_address(server), &update_check::file_is_here);
}

void update_check::download(const QString& folder) {
    if (is_running() || !newest)
        return;
    kept.clear();
    archive = std::make_unique<QSaveFile>(QDir(folder).filePath(newest->archive_name));
    if (!archive->open(QIODevice::WriteOnly))
        return end(
            QStringLiteral("%1 cannot be written: %2.").arg(archive->fileName(), archive->errorString()));
    digest.reset();
    ask(newest->archive, &update_check::archive_is_here);
}

void update_check::ask(const QUrl& address, void (update_check::*when_done)()) {
    broken_off.clear();
    received.clear();
    received_bytes = 0;
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setMaximumRedirectsAllowed(most_redirects);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("brivant-lite"));
    request.setRawHeader("Accept-Encoding", "identity"); // the sizes are those on the line
    reply = network.get(request);
    reply->setReadBufferSize(buffer_size);
    connect(reply, &QNetworkReply::redirected, this, &update_check::take_redirect);
    connect(reply, &QNetworkReply::readyRead, this, &update_check::take_bytes);
    connect(reply, &QNetworkReply::finished, this, when_done);
    patience.start();
}

void update_check::take_redirect(const QUrl& address) {
    if (may_be_asked(address))
        return Q_EMIT reply->redirectAllowed();
    broken_off = QStringLiteral("The update server sends on to %1, which is not asked: only https is.")
                     .arg(address.toDisplayString(QUrl::RemoveUserInfo).left(100));
    reply->abort();
}

void update_check::take_bytes() {
    if (!broken_off.isEmpty())
        return;
    patience.start();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray bytes = reply->readAll();
    if (status != first_success)
        return; // an error page
    received_bytes += bytes.size();
    if (received_bytes > most_bytes()) {
        broken_off = archive
                         ? QStringLiteral("The archive is larger than the version file says, and was not "
                                          "kept.")
                         : QStringLiteral("What the update server sent is no version file: it is too large.");
        return reply->abort();
    }
    if (!archive)
        received += bytes;
    else if (!write_archive(bytes))
        return reply->abort();
    Q_EMIT progress(received_bytes, archive ? newest->size : 0);
}

bool update_check::write_archive(const QByteArray& bytes) {
    digest.addData(bytes);
    if (archive->write(bytes) == bytes.size())
        return true;
    broken_off = QStringLiteral("%1 cannot be written to its end: %2. Is the disk full?")
                     .arg(archive->fileName(), archive->errorString());
    return false;
}

QString update_check::what_went_wrong() const {
    if (!broken_off.isEmpty())
        return broken_off;
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool is_cut_off = archive && status == first_success && received_bytes < newest->size;
    if (is_cut_off)
        return QStringLiteral("The archive was cut off after %1 of %2 bytes, and was not kept. Try again.")
            .arg(received_bytes)
            .arg(newest->size);
    if (reply->error() != QNetworkReply::NoError)
        return QStringLiteral("The update server could not be asked: %1.").arg(reply->errorString());
    return status == first_success
               ? QString()
               : QStringLiteral("The update server answered with the status %1.").arg(status);
}

void update_check::file_is_here() {
    take_bytes();
    QString problem = what_went_wrong();
    if (problem.isEmpty())
        newest = version_file::of(received, reply->url(), problem);
    end(problem);
}

void update_check::archive_is_here() {
    take_bytes();
    QString problem = what_went_wrong();
    if (problem.isEmpty() && digest.result() != newest->sha256)
        problem = QStringLiteral("The archive is not the one that the version file tells of (its SHA-256 is "
                                 "another), and was not kept.");
    if (problem.isEmpty() && !archive->commit())
        problem =
            QStringLiteral("%1 cannot be written: %2.").arg(archive->fileName(), archive->errorString());
    if (problem.isEmpty())
        kept = archive->fileName();
    end(problem);
}

void update_check::stop() {
    if (!is_running())
        return;
    broken_off = QStringLiteral("Stopped. Nothing was kept.");
    reply->abort(); // which ends it
}

void update_check::end(const QString& problem) {
    patience.stop();
    if (archive && kept.isEmpty())
        archive->cancelWriting();
    archive.reset();
    received.clear();
    if (reply) {
        reply->disconnect(this);
        reply->deleteLater();
        reply = nullptr;
    }
    Q_EMIT finished(problem);
}

} // namespace brivant
