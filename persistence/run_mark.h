#pragma once

#include <QString>

namespace brivant {

// That a sampling run is being stored in a folder's database: held from its first line to its last by the
// program that does it, and gone with that program, however it ends.
class run_mark {
public:
    explicit run_mark(const QString& folder);
    ~run_mark();
    Q_DISABLE_COPY_MOVE(run_mark)

    // Whether any program holds one there.
    static bool is_set(const QString& folder);

private:
    const int file;
};

} // namespace brivant
