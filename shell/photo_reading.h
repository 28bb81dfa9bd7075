#pragma once

#include "shell/photo_file.h"

#include <QFutureWatcher>
#include <QTimer>

namespace brivant {

// Reads a picture file that the person chose on a thread of its own, and not for ever.
class photo_reading : public QObject {
    Q_OBJECT

public:
    explicit photo_reading(int longest_ms = photo_file::longest_ms + 2000, QObject* parent = nullptr);

    // What is read already is not wanted any more.
    void begin(const QString& file);
    bool is_running() const { return patience.isActive(); }

Q_SIGNALS:
    void done(const photo_file& read);

private:
    void end(const photo_file& read);

    QString path;
    QTimer patience;
    QFutureWatcher<photo_file> reading;
};

} // namespace brivant
