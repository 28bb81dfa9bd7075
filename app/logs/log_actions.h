#pragma once

#include "app/logs/export_progress.h"
#include "app/screen/screen_view.h"
#include "logs/manage_logsDB.h"
#include "persistence/deletions.h"

#include <memory>

namespace brivant {

// What the log browser does with the selected logs. Long work, an export or a deletion, goes on in slices,
// one at a time. The screen and the manager outlive it.
class log_actions : public QObject {
    Q_OBJECT

public:
    log_actions(QWidget& its_screen, const view_context& its_context, manage_logsDB& its_manager);

    void view(const QList<log_header>& logs);
    void plot(const QList<log_header>& logs);
    // Runs are written, reports are shown. `format`: of other tools, null for the program's own.
    void handle_export(const QList<log_header>& logs, bool as_txt, const run_format* format = nullptr);
    void copy(const QList<log_header>& logs);
    void show_output_folder();
    // After a question.
    void delete_logs(const QList<log_header>& logs);
    // Stops the export or the deletion; what is done stays done.
    void stop();

    bool is_deleting() const { return deletion != nullptr; }
    int deleted() const { return deletion ? static_cast<int>(deletion->deleted()) : 0; }
    int to_delete() const { return deletion ? static_cast<int>(deletion->asked()) : 0; }
    // The strip that tells how far an export is.
    export_progress& exports() { return strip; }

    // "DTC, 21 Nov 2026 13:31".
    static QString title_of(const log_header& log);

Q_SIGNALS:
    // A deletion began, went on or ended.
    void deletion_changed();

private:
    void show_reports(const QList<log_header>& reports);
    void delete_slice();
    void end_deletion();

    QWidget& screen_widget;
    view_context context;
    manage_logsDB& manager;
    export_progress strip;
    std::unique_ptr<log_deletion> deletion;
    timer_handle next_slice;
};

} // namespace brivant
