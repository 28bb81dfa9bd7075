#pragma once

#include <QtGlobal>
#include <memory>
#include <vector>

namespace brivant {

// When the rows of a sample matrix were asked for and their values were true, in milliseconds since the run's
// start. No row begins before the one above it, so that a moment is found by halving. A row takes 8 bytes and
// 4 a column.
class sample_times {
public:
    static constexpr qsizetype block_rows = 4096;

    sample_times();
    ~sample_times();

    void start(int columns);
    // A row that begins where the one above it ends, until it is told; it is the last one, the only one that
    // is written to.
    void add_row();
    // The oldest rows of a block make room.
    void drop_block();
    // The last row begins to be asked for: what came for it before is forgotten.
    void begins(double ms);
    void came(int column, double ms);
    // The rows from `first` to before `end`, of which only that is known that they lie between the first's
    // begin and `until`, lie evenly there.
    void spread(qsizetype first, qsizetype end, double until);

    // False while no row has been told its time: rows then lie 1 apart, and begin with their numbers.
    bool are_known() const { return known; }
    qsizetype rows() const { return row_count; }
    double begin_of(qsizetype row) const;
    // When the last of its values was true; its begin while none is known.
    double end_of(qsizetype row) const;
    // Of one value; the end of the row where it has no time of its own, as what is worked out of the others.
    double moment(qsizetype row, int column) const;
    // How many rows begin before that.
    qsizetype rows_before(double ms) const;
    // The last row that has begun by then; -1 for none.
    qsizetype row_at(double ms) const;
    // The values of rows that begin farther apart do not belong together: a few sweeps, and half a
    // second.
    double longest_way() const;

    static qsizetype block_bytes(int columns);

private:
    struct block;
    block& block_of(qsizetype row) const { return *blocks[static_cast<size_t>(row / block_rows)]; }

    int column_count = 0;
    qsizetype row_count = 0;
    qsizetype dropped = 0;
    bool known = false;
    std::vector<std::unique_ptr<block>> blocks;
};

} // namespace brivant
