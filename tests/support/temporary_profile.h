#pragma once

#include "base/app_paths.h"
#include "base/user_defaults.h"
#include "persistence/database.h"

#include <QDir>
#include <QTemporaryDir>

// A person's files in a folder that goes with it.
struct temporary_profile {
    // In memory where there is such a folder: the database waits for the disk at every change.
    QTemporaryDir folder{(QDir("/dev/shm").exists() ? QString("/dev/shm") : QDir::tempPath()) +
                         "/brivant-XXXXXX"};
    app_paths paths = app_paths::for_profile(folder.path());
    user_defaults defaults{paths.settings_file};
    database db{paths.documents};
};
