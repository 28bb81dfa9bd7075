#include "link/adapter_search.h"

#include <QFile>
#include <QHostAddress>
#include <QPointer>
#include <QStringList>
#include <QtEndian>

#include <algorithm>

namespace brivant {

namespace {

constexpr qsizetype most_candidates = 100;
constexpr qint64 longest_table = 65536;

bool is_of_the_radio(int kind) {
    return kind == interface_bluetooth || kind == interface_le;
}

} // namespace

void adapter_search::add(const candidate& what) {
    const QString key = QString::number(what.where.kind) + what.where.key();
    if (what.where.where.isEmpty() || asked.contains(key) || asked.size() >= most_candidates)
        return;
    asked += key;
    if (!is_of_the_radio(what.where.kind))
        return begin(what);
    waiting += what;
    begin_next_of_the_radio();
}

void adapter_search::begin(const candidate& what) {
    probes.push_back(std::make_unique<link_probe>(
        what.where, what.name, maker, clock,
        [this](const link_probe& of, const probed_adapter& its_answer) { take(of, its_answer); }));
}

void adapter_search::begin_next_of_the_radio() {
    if (of_the_radio || waiting.isEmpty())
        return;
    begin(waiting.takeFirst());
    of_the_radio = probes.back().get();
}

void adapter_search::take(const link_probe& of, const probed_adapter& what) {
    if (of_the_radio == &of)
        of_the_radio = nullptr;
    std::erase_if(probes, [&](const auto& one) { return one.get() == &of; });
    told += what;
    begin_next_of_the_radio();
    const QPointer<adapter_search> alive(this);
    Q_EMIT answered(what);
    if (alive && !is_running())
        Q_EMIT finished();
}

void adapter_search::stop() {
    waiting.clear();
    of_the_radio = nullptr;
    probes.clear();
}

void adapter_search::forget() {
    stop();
    asked.clear();
    told.clear();
}

QList<probed_adapter> adapter_search::adapters() const {
    QList<probed_adapter> found;
    std::copy_if(told.begin(), told.end(), std::back_inserter(found),
                 [](const probed_adapter& one) { return one.is_adapter(); });
    return found;
}

QList<adapter_address> usual_wifi_places() {
    constexpr int usual_port = 35000;
    QList<adapter_address> places;
    for (const char* host :
         {"192.168.0.10", "192.168.4.1", "192.168.1.5", "192.168.1.10", "192.168.0.123", "10.10.10.1"})
        places += {interface_wifi, QLatin1String(host), usual_port};
    places += {interface_wifi, QStringLiteral("192.168.0.10"), 23};
    QFile routes(QStringLiteral("/proc/net/route"));
    if (routes.open(QIODevice::ReadOnly)) {
        const QString gateway = gateway_in(routes.read(longest_table));
        if (!gateway.isEmpty())
            places += {interface_wifi, gateway, usual_port};
    }
    return places;
}

// Columns: interface, destination, gateway ... as the bytes stand in memory, in hexadecimal.
QString gateway_in(const QByteArray& routes) {
    for (const QByteArray& line : routes.split('\n')) {
        const QList<QByteArray> columns = line.simplified().split(' ');
        if (columns.size() < 3 || columns.at(1) != "00000000")
            continue;
        bool ok = false;
        const quint32 in_memory = columns.at(2).toUInt(&ok, 16);
        if (ok && in_memory != 0)
            return QHostAddress(qFromBigEndian(in_memory)).toString();
    }
    return {};
}

} // namespace brivant
