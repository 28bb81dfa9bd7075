#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <limits>
#include <memory>
#include <optional>

namespace brivant {

class run_mark;
class sqlite_connection;
class sqlite_statement;
struct sqlite_failure;

// The vehicles, their photos and the stored results: the SQLite file "BV_loggies_lite.db" in the Documents
// folder. Every operation opens it, does its one job and closes it, but for those between begin_lines() and
// end_lines(); operations are nested in change() alone. Main thread only.
//
// A database that is locked, read-only, damaged or newer is left as it is. The operations then give the
// results named below, and problem() says why. Ids of 0 or less always mean that nothing was stored.
//
// Values are put into the statements as they are, without escaping a single quote; callers that must store
// one double it. A value in which a quote stands alone is refused, as it would end its place in the
// statement.
class database {
public:
    explicit database(const QString& documents_folder);
    ~database();

    QString path() const { return file; }
    // Makes the file when it is missing, else adds what older versions of the program lacked. True when
    // results can be stored. Run at start-up, and again before a result is stored.
    bool init_DB();
    // Adds what this program keeps beside the tables of init_DB(), once that has done its work: an index of
    // the chunks, and a table of raw replies. All else works without them, more slowly. False when they are
    // not there.
    bool add_own_parts();
    // The last init_DB() made the file, with one vehicle in it.
    bool is_new() const { return made_now; }
    // What the person should know: why the last operation failed and what to do, as a sentence with the name
    // of the file. Empty again once init_DB() or a store succeeds.
    QString problem() const { return what_is_wrong; }

    // The rows of any query, each with one text a column in the statement's order, "" for NULL. A query that
    // fails on its way, or needs more than 512 MiB of memory, gives the rows up to there. A text with
    // "DELETE" anywhere runs as a deletion and gives no rows. Results of any size are for for_each_row().
    // Lists are read with each text cut at `listed`.
    static constexpr qsizetype listed = 1000;
    QList<QStringList> retrieve_from_DB(const QString& sql,
                                        qsizetype longest_text = std::numeric_limits<int>::max());
    // Hands the rows of a query to `row` one at a time, until it returns false. False when the query failed.
    // The statement cannot change anything. `row` must not use the database.
    bool for_each_row(const QString& sql, const std::function<bool(const QStringList&)>& row,
                      qsizetype longest_text = std::numeric_limits<int>::max());
    // Runs a deletion. False when it failed; true also when there was nothing to delete.
    bool delete_from_DB(const QString& sql);

    // Several changes as one: all of them or, when `work` gives false or the program is killed, none. What
    // `work` does with this object belongs to it, and so does another change().
    bool change(const std::function<bool(sqlite_connection&)>& work);
    // After a failure for want of room: true when some could be made, for a change that deletes.
    bool make_room();

    // `values`: name, model year, engine volume. Without `this_id` a new row, whose id is returned; else the
    // row is changed and 1 returned. -1 on failure.
    int add_update_DB(const QStringList& values, const QString& this_table, const QString& this_id = {});
    // Sets each field to the value of the same position, quotes and all. `this_id`: a whole number. True when
    // the update completed, also when no row has that id.
    bool update_tableInDB2(const QStringList& fields, const QStringList& these_fields_vals,
                           const QString& this_table, const QString& this_id_field, const QString& this_id);

    // The new row's id; -1 when the file cannot be opened or written, 0 when the statement cannot be
    // prepared.
    int add_2_LOG_DB(const QString& log_type, int veh_id, const QString& info);
    int append_2_LOG_DB(const QString& chunk, const QString& this_GPS_data, int line_no, int log_id);
    // The lines of a sampling run come between these two. Each append_2_LOG_DB() is then on the disk when it
    // returns, at the cost of one flush, and neither waits for a reader nor keeps one out. Meanwhile, and
    // after a run that was cut short until the next init_DB(), a second file "...-wal" belongs to the
    // database.
    void begin_lines();
    void end_lines();
    // Whether any program is between the two.
    bool lines_are_coming() const;
    // Deletes a log with its chunks.
    bool delete_a_DB_log(int log_id);
    // "-1" and after it the chunks of the log, newest first; "-1" alone for a log without any.
    QString pull_rawData_fromDB(const QString& log_id, bool add_line_feed);

    // Stores a photo, not wider than 270 points, in the row `this_vehImageId`, or in a new one for "-666". No
    // image stores NULL. The row's id; -1 and 0 as for logs.
    int do_update_vehicle_image(const QString& veh_id, const QImage& this_image,
                                const QString& this_vehImageId);
    // The first photo of the WHERE clause ("VEH_ID=3"), or none.
    QImage pull_veh_image(const QString& where_clause);

private:
    enum class stored { no, not_prepared, yes };
    using binder = std::function<bool(sqlite_statement&)>;

    // One changing statement. `log_text` stands before SQLite's words when the statement cannot be prepared;
    // `done` is called when it completed.
    stored store(const QString& log_text, const QString& sql, const binder& bind = {},
                 const std::function<void(const sqlite_connection&)>& done = {});
    // As store(): the id of the new row, -1 or 0.
    int insert(const QString& log_text, const QString& sql, const binder& bind = {});
    // The connection to change something by; `own` for one that closes behind the change.
    sqlite_connection& for_change(std::optional<sqlite_connection>& own);
    bool read(const QString& operation, const QString& sql,
              const std::function<bool(sqlite_statement&)>& row);
    bool refuse_lone_quote(const QString& log_text, const QStringList& values);
    void note(const sqlite_failure& failure, const QString& log_text);

    const QString file;
    QString what_is_wrong;
    bool is_no_room = false;
    sqlite_connection* changing = nullptr; // within change()
    bool made_now = false;
    std::unique_ptr<run_mark> lines_follow;
    std::unique_ptr<sqlite_connection> line_connection; // while they come
    int lines_in_log = 0;                               // since the write-ahead log was emptied
};

} // namespace brivant
