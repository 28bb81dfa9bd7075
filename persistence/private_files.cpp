#include "persistence/private_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>
#include <unistd.h>

namespace brivant {

namespace {

constexpr mode_t others = 077;

// False where nothing was to be done. Links are not followed, and what is another's is left to them.
bool make_private(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat its {};
    if (lstat(name.constData(), &its) != 0 || its.st_uid != geteuid() || (its.st_mode & others) == 0 ||
        !(S_ISREG(its.st_mode) || S_ISDIR(its.st_mode)))
        return false;
    return chmod(name.constData(), its.st_mode & 07777 & ~others) == 0;
}

void make_each_private(const QString& folder, const QStringList& names) {
    const QDir its(folder);
    for (const QString& name : its.entryList(names, QDir::Files | QDir::Hidden))
        make_private(its.filePath(name));
}

} // namespace

void make_files_private(const app_paths& paths, const QString& database) {
    make_private(paths.application_folder);
    make_private(paths.settings_file);
    make_each_private(paths.documents,
                      {QFileInfo(database).fileName() + u'*', QStringLiteral("console.log*")});
    for (const QString& folder : {paths.documents, paths.application_folder}) {
        const QString loggies = folder + QStringLiteral("/loggies");
        if (make_private(loggies)) // later ones are made so
            make_each_private(loggies, {});
    }
}

} // namespace brivant
