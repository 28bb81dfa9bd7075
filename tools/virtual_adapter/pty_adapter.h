#pragma once

#include "tools/virtual_adapter/running_session.h"

#include <QObject>
#include <QSocketNotifier>

// An ELM327 adapter with a car behind it on a pseudo-terminal, as a USB adapter is on a serial port. It works
// on the event loop of the thread that made it and never blocks. Its power is the car's: who opens the port
// again finds it as it was left; plugged in again it is freshly reset.
class pty_adapter : public QObject {
    Q_OBJECT
public:
    explicit pty_adapter(QObject* parent = nullptr);
    ~pty_adapter() override { unplug(); }

    // All apply from the next plug_in() on.
    void set_options(virtual_adapter::adapter_options options) { m_options = std::move(options); }
    void set_faults(virtual_adapter::faults what) { m_faults = std::move(what); }
    // Called for every command carried out, before its reply is sent.
    void set_observer(virtual_adapter::adapter_session::observer seen) { m_seen = std::move(seen); }
    // Where the client sets another speed, either side hears rubbish; 0 when any will do.
    void set_speed(int baud) { m_speed = baud; }
    static bool knows_speed(int baud);
    // A symbolic link to the device, there while it is plugged in: the device's own name may be another each
    // time.
    void set_link(const QString& path) { m_link = path; }

    // The path of the device, "" when there can be none: see error().
    QString plug_in(std::shared_ptr<virtual_adapter::car> on);
    void unplug();
    bool is_plugged_in() const { return m_master >= 0; }
    QString error() const { return m_error; }

Q_SIGNALS:
    // By a fault that closes the link.
    void unplugged();

private:
    QString fail();
    void read_bytes();
    void look_for_a_client();
    void write(std::string_view text);
    int client_speed() const;

    virtual_adapter::adapter_options m_options;
    virtual_adapter::faults m_faults;
    virtual_adapter::adapter_session::observer m_seen;
    int m_speed = 0;
    QString m_link;
    QString m_error;
    int m_master = -1;
    std::unique_ptr<QSocketNotifier> m_readable;
    QTimer m_no_client; // runs while nobody has the port open: that can only be asked for
    std::unique_ptr<virtual_adapter::running_session> m_session;
};
