#pragma once

#include "tools/virtual_adapter/faults.h"

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>

#include <functional>
#include <memory>

// An ELM327 adapter with a car behind it on a TCP port. Works on the event loop of the thread that made it
// and never blocks. Every connection is an adapter of its own, freshly reset; they share the car.
class virtual_adapter_server : public QObject {
    Q_OBJECT
public:
    explicit virtual_adapter_server(QObject* parent = nullptr);

    // Both apply to connections made from then on.
    void set_options(virtual_adapter::adapter_options options) { m_options = std::move(options); }
    void set_faults(virtual_adapter::faults what) { m_faults = std::move(what); }

    // Called for every command carried out, before its reply is sent.
    void set_observer(std::function<void(const virtual_adapter::exchange&)> seen) {
        m_seen = std::move(seen);
    }

    // Listens and returns the port (any free one for 0), or 0 when that fails: see error().
    quint16 start(std::shared_ptr<virtual_adapter::car> on, quint16 port = 0,
                  const QHostAddress& address = QHostAddress::LocalHost);

    // Closes the port and every connection.
    void stop();

    QString error() const { return m_server.errorString(); }

private:
    void accept();

    QTcpServer m_server;
    std::shared_ptr<virtual_adapter::car> m_car;
    virtual_adapter::adapter_options m_options;
    virtual_adapter::faults m_faults;
    std::function<void(const virtual_adapter::exchange&)> m_seen;
};
