#pragma once

#include "persistence/log_export.h"
#include "shell/program_core.h"
#include "terminal/stop_signals.h"

#include <memory>

// The command "logs": "logs list" names the stored logs, "logs export ID" writes a sampling run to a file. The car
// is not asked.
class logs_run : public QObject {
    Q_OBJECT

public:
    explicit logs_run(program_core& its_core);

    void start();
    // Why the words after "logs" cannot be carried out, "" when they can.
    static QString wrong_words(const QStringList& words);

Q_SIGNALS:
    // 0 done, 1 failed or stopped.
    void finished(int exit_status);

private:
    void list();
    void begin_export(int log_id);
    void show_text(int log_id);
    void next_slice();
    void end(const QString& sentence, bool done);

    program_core& core;
    text_resources lists;
    std::unique_ptr<log_export> exporting;
    std::unique_ptr<stop_signals> signals_;
    timer_handle slice;
    int last_percent = -1;
};
