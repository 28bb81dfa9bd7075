#pragma once

#include "app/screen/screen_view.h"
#include "diagnostics/readCodes.h"

#include <QPushButton>

class QTextDocument;

namespace brivant {

// The button that saves or prints the report of the page shown: codes, readiness, pending codes and freeze
// frame as one, the vehicle, or test results.
class report_button : public QObject {
    Q_OBJECT

public:
    report_button(QPushButton& its_button, const view_context& its_context, readCodes& its_controller);

    // Another page is shown, that of the operation (a code of operation_code.h).
    void show_page(int its_operation);
    // The results or the operation have changed.
    void show_operation();

    // Writes the report of now to a file. A file that cannot be written is told on the banner.
    void save_as_text(const QString& file);
    void save_as_pdf(const QString& file);

private:
    void ask_for_file(const QString& title, const QString& suffix, const QString& filter,
                      void (report_button::*save)(const QString&));
    void print();
    void tell_saved(const QString& file);
    bool has_results() const;
    QString hint() const;
    QString text() const;
    void fill_page(QTextDocument& document) const;

    QPushButton& button;
    view_context context;
    readCodes& controller;
    int operation = op_read_codes;
};

} // namespace brivant
