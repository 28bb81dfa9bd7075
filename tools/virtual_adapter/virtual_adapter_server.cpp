#include "tools/virtual_adapter/virtual_adapter_server.h"

#include "tools/virtual_adapter/adapter_connection.h"

#include <QTcpSocket>

using virtual_adapter::adapter_connection;

namespace {

constexpr qsizetype most_connections = 16;

} // namespace

virtual_adapter_server::virtual_adapter_server(QObject* parent) : QObject(parent) {
    connect(&m_server, &QTcpServer::newConnection, this, &virtual_adapter_server::accept);
}

quint16 virtual_adapter_server::start(std::shared_ptr<virtual_adapter::car> on, quint16 port,
                                      const QHostAddress& address) {
    stop();
    m_car = std::move(on);
    return m_car && m_server.listen(address, port) ? m_server.serverPort() : 0;
}

void virtual_adapter_server::stop() {
    m_server.close();
    qDeleteAll(findChildren<adapter_connection*>(Qt::FindDirectChildrenOnly));
}

void virtual_adapter_server::accept() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        if (findChildren<adapter_connection*>(Qt::FindDirectChildrenOnly).size() >= most_connections)
            delete socket;
        else
            new adapter_connection(socket, m_car, m_options, m_faults, m_seen, this);
    }
}
