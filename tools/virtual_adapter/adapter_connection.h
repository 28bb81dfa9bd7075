#pragma once

#include "tools/virtual_adapter/faults.h"

#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>

class QTcpSocket;

namespace virtual_adapter {

// One client on one adapter. Deletes itself, and the socket, when the link closes.
class adapter_connection : public QObject {
    Q_OBJECT
public:
    using observer = std::function<void(const exchange&)>;

    adapter_connection(QTcpSocket* socket, std::shared_ptr<car> on, const adapter_options& options,
                       const faults& what, observer seen, QObject* parent);

private:
    void read_socket();
    void take(char character);
    void interrupt();
    void deliver(delivery what);
    void send_due();
    void write(std::string_view text);

    QTcpSocket* m_socket;
    elm327 m_adapter;
    fault_line m_faults;
    observer m_seen;
    std::deque<delivery> m_outbox; // in order; the first one waits for m_timer
    QTimer m_timer;
};

} // namespace virtual_adapter
