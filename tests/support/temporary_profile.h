#pragma once

#include "base/app_paths.h"
#include "base/user_defaults.h"
#include "persistence/database.h"
#include "tests/support/folder_in_memory.h"

#include <QTemporaryDir>

namespace brivant {

// A person's files in a folder that goes with it.
struct temporary_profile {
    QTemporaryDir folder{folder_in_memory()};
    app_paths paths = app_paths::for_profile(folder.path());
    user_defaults defaults{paths.settings_file};
    database db{paths.documents};
};

} // namespace brivant
