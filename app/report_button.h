#pragma once

#include "app/screen_view.h"
#include "diagnostics/readCodes.h"

#include <QPushButton>

class QPrinter;
class QTextDocument;

// The button that saves or prints the report of the codes, the readiness, the pending codes and the freeze
// frame.
class report_button : public QObject {
    Q_OBJECT

public:
    report_button(QPushButton& its_button, const view_context& its_context, readCodes& its_controller);

    // The results or the operation have changed.
    void show_operation();

    // Writes the report of now to a file. A file that cannot be written is told on the banner.
    void save_as_text(const QString& file);
    void save_as_pdf(const QString& file);

private:
    void ask_for_file(const QString& title, const QString& suffix, const QString& filter,
                      void (report_button::*save)(const QString&));
    void print();
    void tell_failure(const QString& file, const QString& reason);
    QString text() const;
    void fill_page(QTextDocument& document) const;

    QPushButton& button;
    view_context context;
    readCodes& controller;
};
