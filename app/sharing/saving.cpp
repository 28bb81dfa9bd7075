#include "app/sharing/saving.h"

#include <QDir>
#include <QFileDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QStandardPaths>

namespace brivant {

QFileDialog* dialog_for_saving(QWidget& parent, const QString& title, const QString& filter,
                               const QString& suffix, const QString& folder, const QString& proposed) {
    auto* dialog = new QFileDialog(&parent, title, QString(), filter);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    dialog->setDirectory(QDir(folder).exists() ? folder : QDir::homePath());
    dialog->selectFile(proposed);
    return dialog;
}

QString documents_folder() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

void ask_for_printer(QWidget& parent, const QString& document, std::function<void(QPrinter&)> print) {
    auto printer = std::make_shared<QPrinter>();
    printer->setDocName(document);
    auto* dialog = new QPrintDialog(printer.get(), &parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // The dialog keeps the printer, which has to outlive it.
    QObject::connect(dialog, &QObject::destroyed, [printer] {});
    QObject::connect(dialog, qOverload<QPrinter*>(&QPrintDialog::accepted), &parent,
                     [print = std::move(print)](QPrinter* chosen) { print(*chosen); });
    dialog->open();
}

QString cannot_be_written(const QString& file, const QString& reason) {
    return QStringLiteral("%1 cannot be written: %2. Choose another folder.")
        .arg(QDir::toNativeSeparators(file), reason);
}

notice not_saved(const QString& what, const QString& file, const QString& reason) {
    return {QStringLiteral("The %1 was not saved").arg(what), cannot_be_written(file, reason)};
}

} // namespace brivant
