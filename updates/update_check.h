#pragma once

#include "updates/version_file.h"

#include <QCryptographicHash>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QSaveFile>
#include <QTimer>
#include <memory>
#include <optional>

namespace brivant {

// Asks an update server for the newest version, and fetches its archive when the person wants it. Servers are
// asked by https alone, also where one sends on to another. The archive gets its name only when its size and
// its SHA-256 are right, and is never run. One thing at a time; nothing is asked but by check() and
// download().
class update_check : public QObject {
    Q_OBJECT

public:
    static constexpr int usual_patience_ms = 20000;

    // `running`: the version of this program. `patience_ms`: how long a server may be silent.
    explicit update_check(const QString& running, int patience_ms = usual_patience_ms,
                          QObject* parent = nullptr);
    ~update_check() override;

    // `server`: the address in the settings, that of the folder with the version file; "" for none.
    void check(const QString& server);
    // Fetches the archive of the version found into that folder.
    void download(const QString& folder);
    // Ends what is under way; nothing of an archive stays behind.
    void stop();

    bool is_running() const { return reply != nullptr; }
    // What the server told last; none before that, and after a failed check.
    const std::optional<version_file>& found() const { return newest; }
    bool is_newer() const { return newest && newest->version.normalized() > own; }
    // The path of the archive that was fetched, "" while there is none.
    const QString& file() const { return kept; }

Q_SIGNALS:
    // The check or the download has ended, also by stop(): with a sentence that says why when it failed, ""
    // when not.
    void finished(const QString& problem);
    void progress(qint64 received, qint64 total);

private:
    void ask(const QUrl& address, void (update_check::*when_done)());
    void take_bytes();
    void take_redirect(const QUrl& address);
    void file_is_here();
    void archive_is_here();
    bool write_archive(const QByteArray& bytes);
    void end(const QString& problem);
    QString what_went_wrong() const;
    qint64 most_bytes() const { return archive ? newest->size : version_file::largest; }

    const QVersionNumber own; // without zeros at its end
    QNetworkAccessManager network;
    QTimer patience;
    std::optional<version_file> newest;
    QString kept;

    QNetworkReply* reply = nullptr;
    QString broken_off; // why this program ended the transfer, "" while it has not
    QByteArray received;
    qint64 received_bytes = 0;
    std::unique_ptr<QSaveFile> archive; // while one is fetched
    QCryptographicHash digest{QCryptographicHash::Sha256};
};

} // namespace brivant
