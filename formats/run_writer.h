#pragma once

#include "formats/run_values.h"

#include <QIODevice>
#include <memory>

namespace brivant {

// A log format.
struct run_format {
    enum class kind { timed_csv, msl, mdf4, gpx };

    kind what;
    const char* word;   // by which a person asks for it
    const char* suffix; // of its files, without the point
    const char* words;  // what it is, for the person
};

const QList<run_format>& run_formats();
// By its word; nullptr when there is none.
const run_format* run_format_of(const QString& word);

// Writes a run to an open device, from its beginning, as the run goes on: begin, then sweeps in the order of
// their time and marks when they are made, then end. Each step costs the same however long the run is, and
// nothing is kept but the marks that no sweep has reached yet. After the first failure nothing more is
// written, and every step says false.
//
// A file that is opened Unbuffered has each sweep as soon as add returns; any other at the latest when end
// does. Of a file that was never ended, all formats but GPX are read as far as they go.
class run_writer {
public:
    virtual ~run_writer() = default;
    Q_DISABLE_COPY_MOVE(run_writer)

    bool begin(const run_head& its_head);
    bool add(const timed_sweep& sweep);
    // Its moment may lie behind that of the sweep that is being gathered.
    bool mark(const timed_mark& its_mark);
    bool end();

    // Why it failed, as a sentence for the person; "" while nothing is wrong.
    const QString& problem() const { return what_is_wrong; }

protected:
    explicit run_writer(QIODevice& out) : device(out) {}

    virtual void write_head() = 0;
    virtual void write_sweep(const timed_sweep& sweep) = 0;
    virtual void write_mark(const timed_mark& its_mark) = 0; // a text of one line, in the order of time
    virtual void write_end() {}

    const run_head& head() const { return run; }
    void put(const QByteArray& bytes);
    // Over what stands at that place; what follows is put behind the end again.
    void put_at(qint64 place, const QByteArray& bytes);
    void fail(const QString& sentence);
    bool has_failed() const { return !what_is_wrong.isEmpty(); }

private:
    void fail_to_write();
    void write_marks_before(double ms);

    QIODevice& device;
    run_head run;
    QList<timed_mark> waiting; // marks that no sweep has reached
    QString what_is_wrong;
};

std::unique_ptr<run_writer> make_run_writer(run_format::kind what, QIODevice& out);

} // namespace brivant
