#include "base/app_paths.h"

#include <QDir>
#include <QStandardPaths>

namespace brivant {

app_paths app_paths::for_profile(const QString& profile, QString* problem) {
    app_paths paths;
    if (profile.isEmpty()) {
        const auto place = QStandardPaths::writableLocation;
        paths.documents = place(QStandardPaths::DocumentsLocation);
        paths.application_folder = place(QStandardPaths::AppLocalDataLocation);
        paths.settings_file = place(QStandardPaths::AppConfigLocation) + "/brivant-lite.ini";
    } else {
        const QString root = QDir(profile).absolutePath();
        paths.documents = root + "/Documents";
        paths.application_folder = root + "/application";
        paths.settings_file = root + "/brivant-lite.ini";
    }
    for (const QString& folder : {paths.documents, paths.application_folder}) {
        if (!QDir().mkpath(folder) && problem)
            *problem =
                QStringLiteral("The folder %1 cannot be made: check the rights of the folder above it.")
                    .arg(folder);
    }
    return paths;
}

} // namespace brivant
