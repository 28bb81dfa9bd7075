#pragma once

#include "persistence/log_export.h"
#include "tests/persistence/local_time_zone.h"
#include "tests/persistence/test_database.h"

#include <QDir>

namespace brivant {

// A Documents folder with stored sampling runs, in Berlin.
struct export_bench : test_database {
    local_time_zone zone{"Europe/Berlin"};
    text_resources lists;
    export_settings settings{.documents = folder.path(), .application_folder = folder.filePath("app")};

    export_bench() { EXPECT_TRUE(db.init_DB() && db.init_DB()); } // nothing is left to migrate

    struct line {
        QString data;
        QString time_stamp = "2013-05-01 14:03:08";
    };
    int stored(const QList<line>& lines, const QString& type = "Log") {
        const int id = db.add_2_LOG_DB(type, 1, QString("%1 Sample points  ").arg(lines.size()));
        QString sql = QString("UPDATE LOGGIES SET time_stamp='2013-05-01 14:03:07' WHERE LOG_ID=%1;").arg(id);
        for (const line& l : lines)
            sql += QString("INSERT INTO LOGGIES_DATA (LOG_ID, DATA, time_stamp) VALUES (%1, '%2', '%3');")
                       .arg(id)
                       .arg(l.data, l.time_stamp);
        outside(sql.toUtf8());
        return id;
    }
    QString path(const QString& name = "2013-05-01_16_03_07_Log.csv") const {
        return folder.filePath("loggies/" + name);
    }
    QStringList exports() const { return QDir(folder.filePath("loggies")).entryList(QDir::Files); }

    // What stands in the file after an export in slices; the problem when there is none.
    QString exported(int id, bool as_txt = false, int lines_a_slice = 1) {
        log_export exporting(db, lists, settings);
        if (!exporting.begin(id, as_txt))
            return exporting.problem();
        while (exporting.step(lines_a_slice)) {
        }
        EXPECT_EQ(exporting.succeeded(), exporting.problem().isEmpty());
        return exporting.succeeded() ? QString::fromUtf8(bytes_of(exporting.path())) : exporting.problem();
    }
};

} // namespace brivant
