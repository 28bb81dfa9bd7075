#pragma once

#include <QDir>

namespace brivant {

// Where a QTemporaryDir with a database in it is made: in memory where there is such a folder, since the
// database waits for the disk at every change.
inline QString folder_in_memory() {
    return (QDir("/dev/shm").exists() ? QString("/dev/shm") : QDir::tempPath()) + "/brivant-XXXXXX";
}

} // namespace brivant
