#include "persistence/database_problem.h"

namespace brivant {

namespace {

// "%1" takes the database's path, "%2" SQLite's own words.
QString problem_format(int code) {
    switch (code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return QStringLiteral(
            "The database %1 is locked by another program: results are not stored until that "
            "program has closed it.");
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return QStringLiteral(
            "The database %1 is read-only: results are not stored until the file and its folder "
            "can be written.");
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return QStringLiteral(
            "The database %1 is damaged or is no database (%2). It is left as it is: results are "
            "not stored until you put a sound copy in its place or move it away, for a new one "
            "to be made.");
    case SQLITE_CANTOPEN:
        return QStringLiteral(
            "The database %1 cannot be opened: results are not stored until the file and its "
            "folder exist and can be read and written.");
    case SQLITE_FULL:
        return QStringLiteral(
            "There is no room left on the disk for the database %1: results are not stored until "
            "you free some.");
    case SQLITE_IOERR:
        return QStringLiteral(
            "The disk failed to read or write the database %1 (%2): results are not stored until "
            "it does. Keep a copy of the file.");
    case SQLITE_TOOBIG:
        return QStringLiteral("A value is too large for the database %1 (64 MiB at most) and is left out.");
    case sqlite_failure::newer_database:
        return QStringLiteral(
            "The database %1 was made by a newer version of this program. It is left as it is: "
            "results are not stored until you start that version or move the file away, for a "
            "new one to be made.");
    case sqlite_failure::not_a_file:
        return QStringLiteral(
            "The database %1 is no file but a folder or the like: results are not stored until "
            "you move that away.");
    case sqlite_failure::incomplete:
        return QStringLiteral(
            "The database %1 lacks what this program keeps in it (%2). It is left as it is: "
            "results are not stored until you put a sound copy in its place or move it away, for "
            "a new one to be made.");
    case sqlite_failure::foreign:
        return QStringLiteral(
            "The database %1 is not a database of this program (%2). It is left as it is: results are "
            "not stored until you put a sound copy in its place or move it away, for a new one to be "
            "made.");
    case SQLITE_INTERRUPT:
        return QStringLiteral(
            "The database %1 takes too long to answer, and was not waited for. It may be damaged: keep a "
            "copy, and put a sound one in its place or move it away, for a new one to be made.");
    default: return QStringLiteral("The database %1 refused an operation: %2.");
    }
}

} // namespace

QString problem_sentence(const QString& path, const sqlite_failure& failure) {
    return problem_format(failure.code).arg(path, failure.message);
}

} // namespace brivant
