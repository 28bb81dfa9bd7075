#pragma once

#include "terminal/terminal_run.h"
#include "updates/update_check.h"

namespace brivant {

// The command "update-check": asks the update server in the settings which version is the newest, and with
// the word "download" fetches the archive of a newer one into the Documents folder. Nothing is run.
class update_run : public terminal_run {
public:
    explicit update_run(program_core& its_core);

    void start() override;
    // Why the words after "update-check" cannot be carried out, "" when they can.
    static QString wrong_words(const QStringList& words);

private:
    void step_done(const QString& problem);
    void show_progress(qint64 received, qint64 total);
    void print_result(const QString& problem);

    update_check updates{QStringLiteral(BV_VERSION)};
    bool fetching = false;
    int last_percent = -1;
};

} // namespace brivant
