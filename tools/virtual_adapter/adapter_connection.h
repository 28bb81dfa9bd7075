#pragma once

#include "tools/virtual_adapter/running_session.h"

#include <QObject>

class QTcpSocket;

namespace virtual_adapter {

// One client on one adapter. Deletes itself, and the socket, when the link closes.
class adapter_connection : public QObject {
    Q_OBJECT
public:
    adapter_connection(QTcpSocket* socket, std::shared_ptr<car> on, const adapter_options& options,
                       const faults& what, adapter_session::observer seen, QObject* parent);

private:
    void read_socket();
    void write(std::string_view text);

    QTcpSocket* m_socket;
    running_session m_session;
};

} // namespace virtual_adapter
