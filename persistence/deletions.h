#pragma once

#include "persistence/database.h"

namespace brivant {

// Deletions of any size, a step at a time, so that they can be shown and hold up nobody. What is deleted is
// gone with the first step that names it; its lines, of which there can be millions, follow. Cut short, by a
// stop or with the program, lines are left that belong to no log: put_in_order() deletes them.

// Deletes logs one after the other.
class log_deletion {
public:
    log_deletion(database& store, QList<int> log_ids) : db(store), ids(std::move(log_ids)) {}

    // Deletes some of them, or so much of a long one. True while there are more; false too when they could
    // not be deleted.
    bool step();
    bool has_failed() const { return failed; }
    qsizetype deleted() const { return so_far.headers; }
    qsizetype cleared() const { return so_far.cleared; } // their lines, too
    qsizetype asked() const { return ids.size(); }

private:
    struct progress {
        qsizetype headers = 0;
        qsizetype cleared = 0;
    };
    bool try_step(int rows);

    database& db;
    const QList<int> ids;
    progress so_far;
    bool failed = false;
};

// Deletes a vehicle: itself, its photo and its logs at once, then their lines.
class vehicle_deletion {
public:
    vehicle_deletion(database& store, int its_veh_id);

    bool step();
    // Nothing of it was deleted.
    bool has_failed() const { return failed; }
    int veh_id() const { return id; }
    const log_deletion& logs() const { return its_logs; }

private:
    QList<int> logs_of_it();
    bool delete_itself();

    database& db;
    const int id;
    bool failed = false;
    bool is_gone = false;
    log_deletion its_logs;
};

} // namespace brivant
