#pragma once

#include "link/adapter_search.h"
#include "link/bluetooth_scanner.h"

namespace brivant {

// "Find my adapter": asks everywhere where one may be, at a person's word only. Wi-Fi and USB are asked at
// once; devices of the radio when it has looked around for a few seconds, and then those that are paired or
// have what an adapter has. It pairs with none.
class adapter_finder : public QObject {
    Q_OBJECT

public:
    // `time_source` outlives it.
    adapter_finder(transport_maker make, timers& time_source);

    // Adapters that are known, of every kind, and serial ports that may be asked: another port may lead to a
    // printer.
    void start(const QList<adapter_search::candidate>& known, const QStringList& ports);
    void stop();

    bool is_running() const { return end_of_look || search.is_running(); }
    const QList<probed_adapter>& answers() const { return search.answers(); }
    QList<probed_adapter> adapters() const { return search.adapters(); }
    // What it is doing, or what came of it, a sentence or two.
    QString sentence() const;

    static constexpr int look_ms = 6000;

Q_SIGNALS:
    void changed();
    void finished();

private:
    void look_around();
    void ask_those_around();
    void take_step();

    timers& clock;
    adapter_search search;
    bluetooth_scanner scanner;
    QList<adapter_search::candidate> of_the_radio; // known ones
    timer_handle end_of_look;
    QString radio_problem;
    bool is_over = true;
};

} // namespace brivant
