#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace brivant {

// Ctrl-C and a polite kill as a call from the event loop. The second one ends the program at once.
class stop_signals : public QObject {
public:
    explicit stop_signals(std::function<void()> on_stop);

private:
    std::function<void()> call;
    std::unique_ptr<QSocketNotifier> arrived;
};

} // namespace brivant
