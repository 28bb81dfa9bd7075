#pragma once

#include <QFile>
#include <QProcessEnvironment>
#include <QString>

namespace brivant {

// What a program is started with so that its N-th change to a file fails, or kills it: see disk_faults.cpp.
struct faulty_disk {
    QByteArray variable;    // "BV_FAIL_AT" or "BV_KILL_AT"
    QByteArray at;          // "7", or "7+" for all from there on
    QString told;           // a file of the test's own, which is made when it strikes
    QByteArray files = "/"; // only those whose path has this in it

    void surround(QProcessEnvironment& program) const {
        if (variable.isEmpty())
            return;
        QFile::remove(told);
        program.insert("LD_PRELOAD", BV_DISK_FAULTS);
        program.insert("ASAN_OPTIONS", program.value("ASAN_OPTIONS") + ":verify_asan_link_order=0");
        program.insert(variable, at);
        program.insert("BV_FAULT_FILES", files);
        program.insert("BV_FAULT_TOLD", told);
    }
    // What it struck at: "fsync /tmp/..."; "" when the program has no change of that number.
    QByteArray struck() const {
        QFile file(told);
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
    }
};

} // namespace brivant
