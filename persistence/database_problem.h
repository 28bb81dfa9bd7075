#pragma once

#include "persistence/sqlite_connection.h"

namespace brivant {

// What is wrong with the database `path`, and what the person can do about it, in one sentence.
QString problem_sentence(const QString& path, const sqlite_failure& failure);

} // namespace brivant
