#pragma once

#include "link/bluetooth_scanner.h"
#include "shell/program_core.h"
#include "terminal/stop_signals.h"

#include <QSet>
#include <memory>

// The command "bluetooth-scan": looks for Bluetooth devices once and lists them.
class bluetooth_scan_run : public QObject {
    Q_OBJECT

public:
    explicit bluetooth_scan_run(program_core& its_core);

    void start();

Q_SIGNALS:
    // 0 done, 1 Bluetooth cannot be used, or stopped.
    void finished(int exit_status);

private:
    void follow();
    void print_result(bool done);

    program_core& core;
    bluetooth_scanner scanner;
    QString told;
    QSet<QString> listed; // the lines told while looking
    std::unique_ptr<stop_signals> signals_;
};

// A line a device: address, whether it is paired, name.
QString devices_as_text(const QList<bluetooth_device>& devices);
