#include "shell/photo_reading.h"

#include <QPromise>
#include <QThreadPool>
#include <memory>

namespace brivant {

photo_reading::photo_reading(int longest_ms, QObject* parent) : QObject(parent) {
    patience.setSingleShot(true);
    patience.setInterval(longest_ms);
    connect(&patience, &QTimer::timeout, this, [this] { end(photo_file::too_slow(path)); });
    connect(&reading, &QFutureWatcherBase::finished, this, [this] {
        if (is_running()) // else it is late
            end(reading.result());
    });
}

void photo_reading::begin(const QString& file) {
    path = file;
    patience.start();
    const auto promise = std::make_shared<QPromise<photo_file>>();
    promise->start();
    reading.setFuture(promise->future());
    QThreadPool::globalInstance()->start([promise, file] {
        promise->addResult(read_photo_file(file));
        promise->finish();
    });
}

void photo_reading::end(const photo_file& read) {
    patience.stop();
    Q_EMIT done(read);
}

} // namespace brivant
