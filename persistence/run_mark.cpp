#include "persistence/run_mark.h"

#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace brivant {

namespace {

// The folder itself is locked: closing the database's file a second time would drop SQLite's own locks on it.
int opened(const QString& folder) {
    return open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

} // namespace

run_mark::run_mark(const QString& folder) : file(opened(folder)) {
    if (file >= 0)
        flock(file, LOCK_SH | LOCK_NB);
}

run_mark::~run_mark() {
    if (file >= 0)
        close(file);
}

bool run_mark::is_set(const QString& folder) {
    const int mine = opened(folder);
    if (mine < 0)
        return false;
    const bool is_free = flock(mine, LOCK_EX | LOCK_NB) == 0;
    close(mine);
    return !is_free;
}

} // namespace brivant
