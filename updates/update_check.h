#pragma once

#include "base/whole_file.h"
#include "updates/bounded_get.h"
#include "updates/version_file.h"

#include <QCryptographicHash>
#include <QFile>
#include <memory>
#include <optional>

namespace brivant {

// Asks an update server for the newest version, and fetches its archive when the person wants it. Servers are
// asked by https alone, also where one sends on to another. The archive gets its name only when its size is
// right and so is its SHA-256 as it lies on the disk; it replaces nothing, and is never run. One thing at a
// time; nothing is asked but by check() and download().
class update_check : public QObject {
    Q_OBJECT

public:
    // `running`: the version of this program.
    explicit update_check(const QString& running, const server_patience& patience = {},
                          QObject* parent = nullptr);
    ~update_check() override;

    // `server`: the address in the settings, that of the folder with the version file; "" for none.
    void check(const QString& server);
    // Fetches the archive of the version found into that folder.
    void download(const QString& folder);
    // Ends what is under way; nothing of an archive stays behind.
    void stop();

    bool is_running() const { return get.is_running() || archive; }
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
    void take_bytes(const QByteArray& body);
    void answer_ended(bool is_whole, const QString& problem);
    void take_version_file(QString problem);
    void archive_is_here(bool is_whole, QString problem);
    void check_a_slice();
    void keep_archive();
    void end(const QString& problem);
    QString cannot_be_written() const;

    const QVersionNumber own; // without zeros at its end
    bounded_get get;
    std::optional<version_file> newest;
    QString kept;

    QByteArray received;                 // of a version file
    std::unique_ptr<whole_file> archive; // while one is fetched
    QFile written;                       // the archive as it lies on the disk, while it is looked at
    QCryptographicHash digest{QCryptographicHash::Sha256};
    QTimer slices;
};

} // namespace brivant
