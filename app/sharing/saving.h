#pragma once

#include "app/look/notice_banner.h"

#include <functional>

class QFileDialog;
class QPrinter;

namespace brivant {

// What is asked and told where something is saved or printed. No dialog runs an event loop of its own.

// A dialog for the file to save to, still to be opened; it deletes itself. `suffix`: without a dot. `folder`:
// to begin in, where there is one. `proposed`: the name of the file.
QFileDialog* dialog_for_saving(QWidget& parent, const QString& title, const QString& filter,
                               const QString& suffix, const QString& folder, const QString& proposed);
// The person's folder for documents.
QString documents_folder();

// Asks for a printer, and gives it to `print` while `parent` is there. `document`: the name of what is
// printed.
void ask_for_printer(QWidget& parent, const QString& document, std::function<void(QPrinter&)> print);

QString cannot_be_written(const QString& file, const QString& reason);
// `what`: "report".
notice not_saved(const QString& what, const QString& file, const QString& reason);

} // namespace brivant
