#pragma once

#include <QString>

namespace brivant {

// The folders of a person's own files. `profile` ("" for none) puts all of them below one folder of its own.
struct app_paths {
    QString documents;          // the database, the console log, the exports
    QString application_folder; // session files
    QString settings_file;      // the user defaults

    // Makes the folders that are missing. A folder that cannot be made is reported in `problem` (a sentence),
    // which is empty otherwise; the paths are returned all the same.
    static app_paths for_profile(const QString& profile, QString* problem = nullptr);
};

} // namespace brivant
