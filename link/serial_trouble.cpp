#include "link/serial_trouble.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

const QString modem_manager = QStringLiteral("ModemManager"); // it looks for a modem at every new port

QString name_of_process(const std::filesystem::path& process) {
    QFile file(QString::fromStdString((process / "comm").string()));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(64)).trimmed() : QString();
}

bool has_open(const std::filesystem::path& process, const std::filesystem::path& device) {
    std::error_code refused;
    for (std::filesystem::directory_iterator file(process / "fd", refused), end; !refused && file != end;
         file.increment(refused)) {
        std::error_code gone;
        if (std::filesystem::read_symlink(*file, gone) == device)
            return true;
    }
    return false; // or a process of another user
}

QString name_of_first_process(const std::function<bool(const std::filesystem::path&)>& is_it) {
    std::error_code failed;
    for (std::filesystem::directory_iterator process("/proc", failed), end; !failed && process != end;
         process.increment(failed)) {
        const std::string number = process->path().filename().string();
        if (std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
            is_it(process->path()))
            return name_of_process(process->path());
    }
    return {};
}

QString why_it_is_held(const QString& path) {
    std::error_code failed;
    const std::filesystem::path device = std::filesystem::canonical(path.toStdString(), failed);
    const QString holder = name_of_first_process(
        [&](const std::filesystem::path& process) { return has_open(process, device); });
    const QString modems =
        QStringLiteral("It looks for a modem at each new port: wait half a minute, or stop it with "
                       "\"sudo systemctl stop ModemManager\".");
    if (holder == modem_manager)
        return QStringLiteral("%1 is in use by ModemManager. %2").arg(path, modems);
    if (!holder.isEmpty())
        return QStringLiteral("%1 is in use by another program, %2. End it, then try again.")
            .arg(path, holder);
    const bool may_be_modems = !name_of_first_process([](const std::filesystem::path& process) {
                                    return name_of_process(process) == modem_manager;
                                }).isEmpty();
    return may_be_modems
               ? QStringLiteral("%1 is in use by another program, perhaps ModemManager. %2").arg(path, modems)
               : QStringLiteral("%1 is in use by another program. End it, then try again.").arg(path);
}

QString why_it_is_denied(const QString& path, const struct stat& file) {
    const group* its_group = ::getgrgid(file.st_gid);
    const passwd* person = ::getpwuid(::geteuid());
    if (its_group == nullptr || file.st_gid == 0 || (file.st_mode & S_IWGRP) == 0)
        return QStringLiteral("%1 may only be used by the administrator of this computer.").arg(path);
    const QString group_name = QString::fromLocal8Bit(its_group->gr_name);
    const QString user = person != nullptr ? QString::fromLocal8Bit(person->pw_name) : QStringLiteral("USER");
    for (char** member = its_group->gr_mem; *member != nullptr; ++member)
        if (user == QString::fromLocal8Bit(*member))
            return QStringLiteral("%1 may only be used by the group \"%2\". You are in it from your next "
                                  "login on: log out and in again.")
                .arg(path, group_name);
    return QStringLiteral(
               "%1 may only be used by the group \"%2\". Run \"sudo usermod -a -G %2 %3\", then log "
               "out and in again.")
        .arg(path, group_name, user);
}

} // namespace

QString why_port_did_not_open(const QString& path, const QString& reason) {
    const QString not_there =
        QStringLiteral("%1 is not plugged in. Plug the adapter in, or choose another port.").arg(path);
    const QString no_port = QStringLiteral("%1 is no serial port.").arg(path);
    const QByteArray name = QFile::encodeName(path);
    struct stat file {};
    if (::stat(name.constData(), &file) != 0)
        return errno == EACCES ? QStringLiteral("%1 is in a folder that you may not open.").arg(path)
                               : not_there;
    if (!S_ISCHR(file.st_mode))
        return no_port;
    const int descriptor = ::open(name.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    const int error = errno;
    if (descriptor >= 0) {
        const bool is_terminal = ::isatty(descriptor) == 1;
        ::close(descriptor);
        return is_terminal ? why_it_is_held(path) : no_port;
    }
    switch (error) {
    case EACCES:
    case EPERM: return why_it_is_denied(path, file);
    case EBUSY: return why_it_is_held(path);
    case ENOENT:
    case ENXIO:
    case ENODEV:
    case EIO: return not_there;
    default: return QStringLiteral("%1 could not be opened: %2").arg(path, reason);
    }
}

} // namespace brivant
