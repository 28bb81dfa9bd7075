#pragma once

#include "link/transport.h"

namespace brivant {

// Stands in for an adapter: a handful of commands with canned replies, one car on ISO 9141-2 with two stored
// codes. Each reply is delivered before write() returns.
class simulated_adapter : public transport {
    Q_OBJECT

public:
    condition state() const override { return current; }
    void open() override;
    void close() override { current = condition::closed; }
    void write(const QByteArray& command) override { emulate_OBD(command); }

    // Posts the canned reply to the command, which is compared as a whole, blanks and "\r" included.
    void emulate_OBD(const QByteArray& command);

private:
    condition current = condition::closed;
};

} // namespace brivant
