#pragma once

#include "base/timers.h"
#include "link/bluetooth_service.h"

namespace brivant {

// Looks for Bluetooth devices and keeps the list of them up to date until it is stopped, also after the radio
// has stopped looking: a device that is paired meanwhile shows so. It goes on by itself when Bluetooth
// becomes usable.
class bluetooth_scanner : public QObject {
    Q_OBJECT

public:
    enum class phase { idle, asking, unusable, scanning, done };

    // `time_source` outlives it.
    explicit bluetooth_scanner(timers& time_source) : clock(time_source) {}
    ~bluetooth_scanner() override { stop(); }

    // Starts, or looks for devices once more.
    void start();
    void stop();

    phase now() const { return at; }
    const QList<bluetooth_device>& devices() const { return found.devices; }
    // What it is doing or why it cannot, a sentence or two for the person.
    QString sentence() const;

    static constexpr int look_every_ms = 1000;
    static constexpr int scan_ms = 12000; // an inquiry of the radio takes 10.24 s

Q_SIGNALS:
    void changed();

private:
    void look();
    void take(const bluetooth_surroundings& surroundings);
    void begin_discovery();
    void end_discovery(const QString& its_problem = QString());

    timers& clock;
    bluetooth_service service;
    bluetooth_surroundings found;
    phase at = phase::idle;
    bool is_looking = false;
    QString problem; // why the radio does not look
    timer_handle next_look;
    timer_handle end_of_scan;
};

} // namespace brivant
