#include "base/settings_file.h"

#include "base/whole_file.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace brivant {

namespace {

using namespace std::chrono_literals;

constexpr qint64 largest_file = 4 * 1024 * 1024;
constexpr auto patience = 2s;
constexpr std::chrono::duration<unsigned long, std::milli> between_tries = 10ms;

// The folder of the settings, locked. The system frees it with the program that holds it, however that ends.
class folder_lock {
public:
    explicit folder_lock(const QString& folder)
        : file(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        const QDeadlineTimer deadline(patience);
        while (file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            is_taken = deadline.hasExpired();
            if (is_taken)
                return;
            QThread::msleep(between_tries.count());
        }
    }
    ~folder_lock() {
        if (file >= 0)
            ::close(file);
    }
    Q_DISABLE_COPY_MOVE(folder_lock)

    // Another program's. A file system without locks takes none.
    bool is_anothers() const { return is_taken; }

private:
    const int file;
    bool is_taken = false;
};

} // namespace

QString settings_file::place() {
    reason.clear();
    const QFileInfo its(name);
    if (!its.isSymLink())
        return its.absoluteFilePath();
    const QString real = its.canonicalFilePath();
    if (real.isEmpty())
        reason = QStringLiteral("it is a link that leads nowhere");
    return real;
}

std::optional<QByteArray> settings_file::bytes(const QString& path) {
    const QFileInfo its(path);
    if (!its.exists())
        return QByteArray();
    QFile file(path);
    if (!its.isFile())
        reason = its.isDir() ? QStringLiteral("it is a folder") : QStringLiteral("it is a device");
    else if (its.size() > largest_file)
        reason = QStringLiteral("it is too large for settings");
    else if (!file.open(QIODevice::ReadOnly))
        reason = file.errorString();
    else
        return file.readAll();
    return std::nullopt;
}

QHash<QString, QVariant> settings_file::values() {
    const QString path = place();
    const auto held = path.isEmpty() ? std::nullopt : bytes(path);
    what_is_wrong =
        held ? QString() : QStringLiteral("The settings file %1 cannot be read: %2.").arg(name, reason);
    return values_of_ini(held.value_or(QByteArray()));
}

bool settings_file::change(const ini_changes& changes) {
    const QString path = place();
    what_is_wrong.clear();
    if (!path.isEmpty() && stored(path, changes))
        return true;
    what_is_wrong = QStringLiteral("The settings file %1 cannot be written: %2.").arg(name, reason);
    return false;
}

bool settings_file::stored(const QString& path, const ini_changes& changes) {
    const QString folder = QFileInfo(path).path();
    QDir().mkpath(folder); // without it no file can be made, which is told
    const folder_lock lock(folder);
    if (lock.is_anothers()) {
        reason = QStringLiteral("another program keeps its folder locked. Try again");
        return false;
    }
    const auto before = bytes(path);
    if (!before)
        return false;
    const QByteArray after = with_changed_keys(*before, changes);
    whole_file file(path);
    const bool is_so = after == *before && QFile::exists(path);
    if (is_so || (file.begin() && file.write(after) == after.size() && file.commit()))
        return true;
    reason = file.errorString();
    return false;
}

} // namespace brivant
