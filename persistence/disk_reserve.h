#pragma once

#include <QString>

namespace brivant {

// A file of 256 KiB beside the database that is given up when the disk is full, so that something can be
// deleted even then: SQLite needs some room to write down what a change would undo.

// Makes it when it is missing and the disk has room to spare.
void keep_reserve(const QString& database_file);
// True when there was one, whose room is free now.
bool give_up_reserve(const QString& database_file);

} // namespace brivant
