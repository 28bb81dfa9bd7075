#pragma once

#include "base/timers.h"
#include "link/adapter_place.h"
#include "link/transport.h"

#include <functional>
#include <memory>
#include <optional>

namespace brivant {

using transport_maker = std::function<std::unique_ptr<transport>(const adapter_place&)>;

// What came of asking at an address whether an adapter is there.
struct probed_adapter {
    adapter_address where; // with the speed that was found, of a USB adapter
    QString name;          // of a device, "" of a host
    QString greeting;      // its answer to AT I; "" where no adapter answers
    QString problem;       // why it does not, a sentence
    int milliseconds = 0;

    bool is_adapter() const { return !greeting.isEmpty(); }
};

// Opens a link, asks "AT I" and judges the answer. It sends nothing else, and leaves the adapter as it was.
class link_probe : public QObject {
    Q_OBJECT

public:
    using teller = std::function<void(const link_probe& which, const probed_adapter& what)>;

    // `tell` is called once, from the event loop, and may destroy the probe. The timers outlive it.
    link_probe(const adapter_address& where, const QString& name, const transport_maker& make,
               timers& time_source, teller tell);
    ~link_probe() override;

    // The longest that one of that kind takes.
    static int patience_ms(int kind);

private:
    void ask();
    void take(const QString& text);
    void end(const QString& problem);

    adapter_place place;
    timers& clock;
    std::unique_ptr<transport> link;
    teller on_end;
    probed_adapter result;
    QString heard;
    int64_t began = 0;
    timer_handle patience, next_try, telling;
};

// The line by which an adapter names itself in what came for "AT I", to its prompt. Nothing where something
// else answers: a web server, a shell, something that repeats what it hears.
std::optional<QString> greeting_in(const QString& heard);

} // namespace brivant
