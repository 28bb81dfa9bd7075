#pragma once

#include "persistence/database.h"

namespace brivant {

// Deletions of any size, a step at a time, so that they can be shown and stopped and hold up nobody. Cut
// short, by a stop or with the program, they leave what is left in its list, from where it can be deleted
// again.

// Deletes logs one after the other.
class log_deletion {
public:
    log_deletion(database& store, QList<int> log_ids) : db(store), ids(std::move(log_ids)) {}

    // Deletes some of them, or so much of a long one. True while there are more; false too when they could
    // not be deleted.
    bool step();
    bool has_failed() const { return failed; }
    qsizetype deleted() const { return done; }
    qsizetype asked() const { return ids.size(); }

private:
    database& db;
    const QList<int> ids;
    qsizetype done = 0;
    bool failed = false;
};

// Deletes a vehicle: first its logs, at last its photo and itself.
class vehicle_deletion {
public:
    vehicle_deletion(database& store, int its_veh_id);

    bool step();
    bool has_failed() const { return failed; }
    int veh_id() const { return id; }
    const log_deletion& logs() const { return its_logs; }

private:
    QList<int> logs_of_it();
    bool delete_itself();

    database& db;
    const int id;
    bool failed = false;
    log_deletion its_logs;
};

} // namespace brivant
