#pragma once

#include "link/bluetooth_scanner.h"
#include "terminal/terminal_run.h"

#include <QSet>

namespace brivant {

// The command "bluetooth-scan": looks for Bluetooth devices once and lists them.
class bluetooth_scan_run : public terminal_run {
public:
    explicit bluetooth_scan_run(program_core& its_core);

    void start() override;

private:
    void follow();
    void print_result(bool done);

    bluetooth_scanner scanner;
    QString told;
    QSet<QString> listed; // the lines told while looking
};

// A line a device: address, whether it is paired or Bluetooth LE, name.
QString devices_as_text(const QList<bluetooth_device>& devices);

} // namespace brivant
