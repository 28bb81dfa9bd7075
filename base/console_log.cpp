#include "base/console_log.h"

#include "base/anonymity.h"
#include "base/printable.h"

#include <QCoreApplication>
#include <QFile>
#include <QThread>
#include <QTimer>
#include <QtGlobal>
#include <chrono>
#include <cstdio>

namespace brivant {

namespace {

using std::chrono::steady_clock;

constexpr qint64 largest_log = 8 * 1024 * 1024;
constexpr std::chrono::seconds held_back_at_most{1};

struct log_sink {
    FILE* stream = stderr;
    QByteArray path;
    qint64 written = 0;
    steady_clock::time_point next_flush; // past: none is on its way

    void open_next() {
        std::fclose(stream);
        std::rename(path.constData(), (path + ".1").constData());
        stream = std::fopen(path.constData(), "a+");
        written = 0;
    }

    void write(std::initializer_list<QByteArrayView> pieces) {
        if (!stream)
            return;
        if (is_anonymous())
            put_anonymous(pieces);
        else
            for (const QByteArrayView piece : pieces)
                put(printable(piece, line_feeds::escaped));
        put("\n");
        if (!path.isEmpty() && written > largest_log)
            return open_next();
        if (path.isEmpty() || !flush_later())
            flush();
    }

    void flush() {
        next_flush = {};
        if (stream)
            std::fflush(stream);
    }

private:
    void put_anonymous(std::initializer_list<QByteArrayView> pieces) {
        QByteArray line;
        for (const QByteArrayView piece : pieces)
            line += piece;
        put(printable(for_console_log(QString::fromUtf8(line)).toUtf8(), line_feeds::escaped));
    }
    void put(QByteArrayView text) {
        std::fwrite(text.data(), 1, static_cast<size_t>(text.size()), stream);
        written += text.size();
    }

    // A line of its own to the disk costs as much as the command it tells of. False where no event loop will
    // come round to it.
    bool flush_later() {
        QCoreApplication* application = QCoreApplication::instance();
        if (!application || QThread::currentThread() != application->thread())
            return false;
        const auto now = steady_clock::now();
        if (now >= next_flush) {
            next_flush = now + held_back_at_most;
            QTimer::singleShot(held_back_at_most, application, flush_console_log);
        }
        return true;
    }
};

log_sink& sink() {
    static log_sink the_sink;
    return the_sink;
}

void take_qt_message(QtMsgType type, const QMessageLogContext&, const QString& message) {
    QCoreApplication* application = QCoreApplication::instance();
    if (type != QtFatalMsg && application && QThread::currentThread() != application->thread()) {
        // From the thread of a library; the log belongs to the main one.
        QMetaObject::invokeMethod(
            application, [message] { console_log(message); }, Qt::QueuedConnection);
        return;
    }
    console_log(message);
    if (type != QtDebugMsg && type != QtInfoMsg)
        flush_console_log();
}

} // namespace

void console_log(const QString& line) {
    console_log_utf8({line.toUtf8()});
}

void console_log_utf8(std::initializer_list<QByteArrayView> pieces) {
    sink().write(pieces);
}

void flush_console_log() {
    sink().flush();
}

bool redirect_console_log(const QString& file) {
    log_sink& log = sink();
    const QByteArray path = QFile::encodeName(file);
    if (QFile(file).size() > largest_log)
        std::rename(path.constData(), (path + ".1").constData());
    FILE* opened = std::fopen(path.constData(), "a+");
    if (!opened)
        return false;
    if (log.stream && log.stream != stderr)
        std::fclose(log.stream);
    log.stream = opened;
    log.path = path;
    log.written = QFile(file).size();
    qInstallMessageHandler(take_qt_message);
    return true;
}

void silence_console_log() {
    log_sink& log = sink();
    if (log.stream && log.stream != stderr)
        std::fclose(log.stream);
    log.stream = nullptr;
    log.path.clear();
    qInstallMessageHandler(take_qt_message);
}

} // namespace brivant
