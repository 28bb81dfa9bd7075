#pragma once

#include "base/app_paths.h"

namespace brivant {

// Takes from others the rights to what an older version of the program made for all to read: its files, and
// the folders that are its own. Folders that are the person's, as Documents is, stay as they are.
void make_files_private(const app_paths& paths, const QString& database);

} // namespace brivant
