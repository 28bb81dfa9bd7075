#include "base/whole_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

constexpr qsizetype most_waiting = 64 * 1024;
constexpr int most_names = 32; // tried before the folder is given up
constexpr int random_part = 6;
const QString ending = QStringLiteral(".part");

QString random_letters() {
    QString letters;
    for (int i = 0; i < random_part; ++i)
        letters += QChar(u'a' + QRandomGenerator::system()->bounded(26));
    return letters;
}

QByteArray encoded(const QString& path) {
    return QFile::encodeName(path);
}

// "NAME.", cut where the whole would be longer than a name may be.
QString beginning_of_parts(const QString& name) {
    QString kept = name;
    while (encoded(kept).size() + 1 + random_part + ending.size() > whole_file::longest_name)
        kept.chop(1);
    return kept + u'.';
}

// False where another writer holds it, or has just swept it away.
bool is_mine(int file) {
    struct stat its {};
    const bool held = flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    return !held && fstat(file, &its) == 0 && its.st_nlink > 0;
}

} // namespace

whole_file::whole_file(const QString& path, existing what_is_there)
    : target(QFileInfo(path).absoluteFilePath()), there(what_is_there) {}

whole_file::~whole_file() {
    give_up();
}

bool whole_file::begin() {
    give_up();
    has_failed = false;
    if (const QString reason = in_the_way(); !reason.isEmpty())
        return fail(reason);
    remove_leftovers();
    return make_part() && QIODevice::open(QIODevice::WriteOnly);
}

QString whole_file::in_the_way() const {
    struct stat its {};
    if (lstat(encoded(target).constData(), &its) != 0)
        return {}; // what else is wrong is told when the part is made
    if (S_ISDIR(its.st_mode))
        return QStringLiteral("a folder has this name");
    if (S_ISLNK(its.st_mode))
        return QStringLiteral("a link has this name");
    if (!S_ISREG(its.st_mode))
        return QStringLiteral("a device has this name");
    return there == existing::is_refused ? QStringLiteral("a file of this name is there already") : QString();
}

bool whole_file::make_part() {
    const QFileInfo its(target);
    const QString beginning = its.path() + u'/' + beginning_of_parts(its.fileName());
    for (int i = 0; i < most_names; ++i) {
        part = beginning + random_letters() + ending;
        file = ::open(encoded(part).constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (file < 0 && errno != EEXIST)
            break;
        if (file >= 0 && is_mine(file))
            return true;
        if (file >= 0)
            ::close(file);
    }
    file = -1;
    return fail(errno);
}

// A living writer holds its part locked.
void whole_file::remove_leftovers() const {
    const QFileInfo its(target);
    const QString beginning = beginning_of_parts(its.fileName());
    const QDir folder(its.path());
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) {
        if (!name.startsWith(beginning) || !name.endsWith(ending) ||
            name.size() != beginning.size() + random_part + ending.size())
            continue;
        const QByteArray path = encoded(folder.filePath(name));
        const int old = ::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (old < 0)
            continue;
        if (flock(old, LOCK_EX | LOCK_NB) == 0)
            unlink(path.constData());
        ::close(old);
    }
}

qint64 whole_file::writeData(const char* bytes, qint64 size) {
    if (has_failed)
        return -1;
    waiting.append(bytes, static_cast<qsizetype>(size));
    length = std::max(length, pos() + size);
    return waiting.size() < most_waiting || flush() ? size : -1;
}

bool whole_file::flush() {
    if (has_failed || file < 0)
        return false;
    qsizetype done = 0;
    while (done < waiting.size()) {
        const ssize_t written =
            ::write(file, waiting.constData() + done, static_cast<size_t>(waiting.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return fail(written < 0 ? errno : ENOSPC);
        done += written;
    }
    waiting.clear();
    return true;
}

bool whole_file::seek(qint64 place) {
    return flush() && (lseek(file, place, SEEK_SET) == place || fail(errno)) && QIODevice::seek(place);
}

bool whole_file::bring_to_disk() {
    return flush() && (fsync(file) == 0 || fail(errno));
}

bool whole_file::commit() {
    if (!bring_to_disk())
        return false;
    if (const QString reason = in_the_way(); !reason.isEmpty())
        return fail(reason);
    if (!put_in_place())
        return fail(errno == EEXIST ? QStringLiteral("a file of this name is there already")
                                    : qt_error_string(errno));
    part.clear();
    const bool is_there = bring_folder_to_disk();
    give_up();
    return is_there;
}

bool whole_file::put_in_place() {
    const QByteArray from = encoded(part);
    const QByteArray to = encoded(target);
    if (there == existing::is_replaced)
        return std::rename(from.constData(), to.constData()) == 0;
    if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    // Not every file system knows that.
    return (errno == EINVAL || errno == ENOSYS) && link(from.constData(), to.constData()) == 0 &&
           unlink(from.constData()) == 0;
}

bool whole_file::bring_folder_to_disk() {
    const int folder =
        ::open(encoded(QFileInfo(target).path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A folder that may be written to but not read, or whose file system syncs no folders, is none's fault.
    const bool done = folder < 0 || fsync(folder) == 0 || errno == EINVAL;
    const int error = errno;
    if (folder >= 0)
        ::close(folder);
    return done || fail(QStringLiteral("the disk does not confirm that it is stored (%1)")
                            .arg(qt_error_string(error)));
}

bool whole_file::fail(int error) {
    return fail(qt_error_string(error));
}

bool whole_file::fail(const QString& reason) {
    drop_part();
    has_failed = true;
    setErrorString(reason);
    return false;
}

void whole_file::give_up() {
    if (isOpen())
        QIODevice::close();
    drop_part();
}

void whole_file::drop_part() {
    waiting.clear();
    if (file >= 0 && !part.isEmpty())
        unlink(encoded(part).constData());
    if (file >= 0)
        ::close(file);
    file = -1;
    part.clear();
}

} // namespace brivant
