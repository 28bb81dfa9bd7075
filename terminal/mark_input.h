#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <functional>
#include <memory>

namespace brivant {

// A person's marks while a run goes on: each line on standard input, and SIGUSR1 as an empty one.
class mark_input : public QObject {
public:
    // SIGUSR1 does no harm from now on.
    explicit mark_input(std::function<void(const QString& word)> on_mark);
    ~mark_input() override;

    // Marks are told from now on.
    void listen();

private:
    void read_from(int descriptor, QSocketNotifier& notifier);

    std::function<void(const QString& word)> call;
    QByteArray line; // of standard input, as far as it has come
    std::unique_ptr<QSocketNotifier> typed;
    std::unique_ptr<QSocketNotifier> signalled;
};

} // namespace brivant
