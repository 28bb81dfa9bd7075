#pragma once

#include "link/link_probe.h"

#include <QList>
#include <vector>

namespace brivant {

// Asks at many addresses at once which of them are adapters. Hosts and ports are asked all together; of the
// devices of the radio one after the other, because it can call only one at a time.
class adapter_search : public QObject {
    Q_OBJECT

public:
    struct candidate {
        adapter_address where;
        QString name;
    };

    // Both outlive it.
    adapter_search(transport_maker make, timers& time_source) : maker(std::move(make)), clock(time_source) {}

    // Asks there too; what was asked before is not asked again.
    void add(const candidate& what);
    void stop();
    // What was asked may be asked again.
    void forget();

    bool is_running() const { return !probes.empty() || !waiting.isEmpty(); }
    // How many addresses are not answered for yet, and how many there are.
    qsizetype left() const { return static_cast<qsizetype>(probes.size()) + waiting.size(); }
    qsizetype all() const { return asked.size(); }
    // What was asked and answered, adapters or not, in the order of their answers.
    const QList<probed_adapter>& answers() const { return told; }
    QList<probed_adapter> adapters() const;

Q_SIGNALS:
    void answered(const brivant::probed_adapter& one);
    // None is left.
    void finished();

private:
    void begin(const candidate& what);
    void begin_next_of_the_radio();
    void take(const link_probe& of, const probed_adapter& what);

    transport_maker maker;
    timers& clock;
    std::vector<std::unique_ptr<link_probe>> probes;
    const link_probe* of_the_radio = nullptr; // the one that calls
    QList<candidate> waiting;                 // for the radio
    QStringList asked;
    QList<probed_adapter> told;
};

// The addresses and TCP ports at which adapters make their own network, and the gateway of this computer's.
QList<adapter_address> usual_wifi_places();
// The gateway in a routing table of the kernel's own form (/proc/net/route), "" for none.
QString gateway_in(const QByteArray& routes);

} // namespace brivant
