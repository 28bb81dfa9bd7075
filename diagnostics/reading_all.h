#pragma once

#include "base/timers.h"

#include <QStringList>

namespace brivant {

class readCodes;

// Everything about a car read by one key: codes, pending codes and freeze frame, permanent codes, vehicle,
// test results, one operation after the other. A part that fails is told, and the next one is read, unless
// the link or the car is gone. The controller owns it.
class reading_all {
public:
    explicit reading_all(readCodes& its_controller) : controller(its_controller) {}

    void start();
    // The person stops it, or another operation is started.
    void give_up();
    bool is_on() const { return at > 0; }
    // The operation under way has ended.
    void part_ended(bool done);

    int part_number() const { return at; } // from 1
    static int parts();
    // "Reading the freeze frame, 2 of 5"
    QString words() const;
    // What did not come in the last one, "" when all did.
    QString what_failed() const;

private:
    void read_next();
    void end();

    readCodes& controller;
    int at = 0; // 0: nothing is read
    bool is_starting = false;
    QStringList failed;
    timer_handle next; // the operation before lets go first
};

} // namespace brivant
