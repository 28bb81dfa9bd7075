#include "base/console_log.h"

#include <QByteArray>
#include <QFile>
#include <QtGlobal>
#include <cstdio>

namespace {

constexpr qint64 largest_log = 8 * 1024 * 1024;

struct log_sink {
    FILE* stream = stderr;
    QByteArray path;
    qint64 written = 0;

    void open_next() {
        std::fclose(stream);
        std::rename(path.constData(), (path + ".1").constData());
        stream = std::fopen(path.constData(), "a+");
        written = 0;
    }

    void write(const QByteArray& line) {
        if (!stream)
            return;
        std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stream);
        std::fputc('\n', stream);
        std::fflush(stream);
        written += line.size() + 1;
        if (!path.isEmpty() && written > largest_log)
            open_next();
    }
};

log_sink& sink() {
    static log_sink the_sink;
    return the_sink;
}

void take_qt_message(QtMsgType, const QMessageLogContext&, const QString& message) {
    console_log(message);
}

} // namespace

void console_log(const QString& line) {
    sink().write(line.toUtf8());
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
