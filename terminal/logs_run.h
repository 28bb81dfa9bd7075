#pragma once

#include "logs/manage_logsDB.h"
#include "persistence/deletions.h"
#include "persistence/log_export.h"
#include "terminal/cli_screen.h"
#include "terminal/terminal_run.h"

namespace brivant {

// The command "logs": "logs list" names the stored logs, "logs show ID" prints one, "logs export ID" writes a
// sampling run to a file, "logs delete ID..." deletes, "logs import FILE" takes
// an exported run back. The car is not asked.
class logs_run : public terminal_run {
public:
    explicit logs_run(program_core& its_core);

    void start() override;
    // Why the words after "logs" cannot be carried out, "" when they can.
    static QString wrong_words(const QStringList& words, bool yes);

private:
    // A file that cannot be written is enough for all but deleting.
    bool can_be_read();
    void list();
    void show(const log_header& log);
    void show_figures(const log_header& log);
    void show_text(const log_header& log);
    void show_as_json(const log_header& log);
    void end_in_order();
    void begin_export(int log_id);
    void next_slice();
    void import_file(const QString& file);
    void ask_deletion(const QList<log_header>& logs);
    void next_deletion();
    void end(const QString& sentence, bool done);

    cli_screen view;
    text_resources lists;
    std::unique_ptr<log_export> exporting;
    std::unique_ptr<log_deletion> deletion;
    timer_handle slice;
    int last_percent = -1;
};

} // namespace brivant
