#pragma once

#include "app/look/busy_marks.h"
#include "base/text_resources.h"
#include "persistence/log_export.h"
#include "shell/program_core.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <memory>

namespace brivant {

// A strip that exports stored sampling runs, one after the other: how far it is, Stop, and at the end where
// the files are or why there are none, until that is dismissed or the next export starts. It is hidden while
// there is nothing to say. A screen puts it into its layout, calls start(), and stop() on Esc; when the strip
// goes, so does the file that it is at.
class export_progress : public QFrame {
    Q_OBJECT

public:
    explicit export_progress(program_core& its_core, QWidget* parent = nullptr);

    // `log_ids`: of sampling runs, in the order in which they are written; an empty list does nothing. Units,
    // reading, time column and folders are those in force now. Nothing happens while an export runs. The
    // first that fails ends the export; the files before it stay.
    void start(const QList<int>& log_ids, bool as_txt, const run_format* format = nullptr);
    // The file being written goes, those before it stay.
    void stop();
    bool is_running() const { return exporting != nullptr; }
    // What the strip says: the progress, the paths, or what is wrong.
    QString words() const { return said.text(); }
    // The files written by the export that runs or ran last.
    const QStringList& files() const { return written; }

Q_SIGNALS:
    // Once for each export that was started, however it ended. Also when the whole export failed at once:
    // then before start() returns.
    void finished();

private:
    export_settings settings(const run_format* format) const;
    void begin_next();
    void write_slice();
    void show_progress();
    void fail();
    void end(const QString& heading, const QString& sentence, bool is_problem);
    QString files_before() const;

    program_core& core;
    text_resources lists;
    QList<int> waiting;
    QStringList written;
    qsizetype asked = 0;
    bool as_text = false;
    std::unique_ptr<log_export> exporting;
    QTimer slices;

    QLabel title;
    QLabel said;
    busy_bar bar;
    QPushButton stop_button;
    QToolButton close_button;
};

} // namespace brivant
