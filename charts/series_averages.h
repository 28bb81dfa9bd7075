#pragma once

#include "charts/sample_matrix.h"

#include <vector>

namespace brivant {

// The averages of any range of rows of a sample matrix, at a cost that does not depend on how many they are.
class series_averages {
public:
    // Forgets all, for a matrix of that many columns.
    void start(int columns);
    // The rows of the matrix that are not counted yet, from the one after the last call's on. They are not
    // written to any more, and the matrix has dropped none.
    void count_rows(const sample_matrix& matrix);
    // Of the rows from `begin` to before `end` that have a value; NaN when none has. All of them are counted.
    double average(const sample_matrix& matrix, int column, qsizetype begin, qsizetype end) const;

private:
    struct total {
        double sum = 0;
        qsizetype count = 0;

        void add(double value);
    };

    total before(const sample_matrix& matrix, int column, qsizetype row) const;

    int column_count = 0;
    qsizetype counted = 0;
    std::vector<total> running;    // a column
    std::vector<total> milestones; // of all rows before each 64th one, column by column
};

} // namespace brivant
