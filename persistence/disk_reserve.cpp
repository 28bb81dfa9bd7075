#include "persistence/disk_reserve.h"

#include "base/whole_file.h"

#include <QFileInfo>
#include <QStorageInfo>

namespace brivant {

namespace {

constexpr qsizetype reserve = 256 * 1024;
constexpr qint64 room_to_spare = 16 * 1024 * 1024;

QString file_of(const QString& database_file) {
    return database_file + QStringLiteral("-reserve");
}

} // namespace

void keep_reserve(const QString& database_file) {
    const QString file = file_of(database_file);
    if (QFileInfo(file).exists() || QStorageInfo(QFileInfo(file).path()).bytesAvailable() < room_to_spare)
        return;
    whole_file made(file, whole_file::existing::is_refused);
    if (made.begin() && made.write(QByteArray(reserve, '\0')) == reserve)
        made.commit(); // without it all else works
}

bool give_up_reserve(const QString& database_file) {
    return QFile::remove(file_of(database_file));
}

} // namespace brivant
