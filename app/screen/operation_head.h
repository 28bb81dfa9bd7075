#pragma once

#include "app/look/busy_marks.h"
#include "app/screen/screen_view.h"
#include "diagnostics/readCodes.h"

#include <QLabel>
#include <QPushButton>

namespace brivant {

// The head of a page: the buttons that start and stop its operation, a note, and the progress. One operation
// runs at a time; while that of another page runs, the note says so and this page cannot start.
class operation_head : public QObject {
    Q_OBJECT

public:
    struct parts {
        QPushButton& read;
        QPushButton& stop;
        QLabel& note;
        busy_bar& progress;
    };

    // `its_operations`: the codes of the operations that the page shows.
    operation_head(const parts& its_parts, const view_context& its_context, readCodes& its_controller,
                   const QList<int>& its_operations);

    // Starts the operation by `run`, or says why not.
    void start(const std::function<void()>& run);
    bool runs_here() const;
    bool runs_elsewhere() const { return controller.is_running() && !runs_here(); }
    // `summary`: the note while nothing runs elsewhere.
    void show(const QString& summary);
    void show_progress();
    // What an empty page says while its operation runs.
    QString waiting_words() const;

private:
    QString what_runs() const;

    const parts ui;
    view_context context;
    readCodes& controller;
    QList<int> operations;
};

} // namespace brivant
