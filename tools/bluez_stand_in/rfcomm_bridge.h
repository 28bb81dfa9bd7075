#pragma once

#include <QLocalSocket>
#include <QTcpSocket>

// The far end of one RFCOMM channel: a pair of sockets, of which one is handed to the program and the other
// is bridged to an adapter on a TCP port of this machine. Deletes itself when either end closes.
class rfcomm_bridge : public QObject {
    Q_OBJECT

public:
    // `its_port`: 0 for an adapter that never says a word.
    rfcomm_bridge(quint16 its_port, QByteArray& all_received, QObject* parent);
    ~rfcomm_bridge() override;

    // The descriptor for the program, -1 when there is none. It is closed with release_descriptor(), once the
    // message that carries it was sent: the message holds a copy.
    int descriptor() const { return far_end; }
    void release_descriptor();

    // What the adapter would say, without being asked.
    void say(const QByteArray& bytes);

private:
    void pass_on();

    QLocalSocket channel;
    QTcpSocket adapter;
    QByteArray& received;
    QByteArray waiting; // until the adapter is connected
    int far_end = -1;
    bool is_mute;
};
