#pragma once

#include "link/transport.h"

#include <QStringList>

namespace brivant {

// An adapter whose side of the conversation the test speaks.
class scripted_transport : public transport {
    Q_OBJECT

public:
    // Commands are appended to `its_written` without their "\r". `opens`: open() succeeds inside the call.
    scripted_transport(QStringList& its_written, bool opens) : opens_at_once(opens), written(its_written) {}

    condition state() const override { return current; }
    void open() override {
        if (current != condition::closed)
            return;
        ++attempts;
        current = condition::opening;
        if (opens_at_once)
            finish_opening();
    }
    void close() override { current = condition::closed; }
    void write(const QByteArray& command) override {
        if (current == condition::open)
            written +=
                QString::fromUtf8(command.endsWith('\r') ? command.chopped(1) : command + " (no return)");
    }

    void finish_opening() {
        current = condition::open;
        Q_EMIT opened();
    }
    void refuse(const QString& reason) {
        current = condition::closed;
        Q_EMIT failed(reason);
    }
    void receive(const QString& text) {
        if (current == condition::open)
            Q_EMIT OBDevent(text);
    }
    void break_off() {
        current = condition::closed;
        Q_EMIT closed();
    }

    bool opens_at_once;
    int attempts = 0;

private:
    QStringList& written;
    condition current = condition::closed;
};

} // namespace brivant
