#include "app/screen/share_menu.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTextDocument>

namespace {

constexpr double print_size = 9.5; // points

void ask_for_file(QPushButton& button, window_frame& frame, const shared_text& shared) {
    auto* dialog = new QFileDialog(&button, QStringLiteral("Save the %1").arg(shared.what), QString(),
                                   QStringLiteral("Text files (*.txt)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    dialog->setDirectory(QDir(documents).exists() ? documents : QDir::homePath());
    dialog->selectFile(shared.file_name + QStringLiteral(".txt"));
    QObject::connect(dialog, &QFileDialog::fileSelected, &button,
                     [&frame, shared](const QString& file) { save_shared_text(frame, shared, file); });
    dialog->open();
}

void print(QPushButton& button, const shared_text& shared) {
    auto printer = std::make_shared<QPrinter>();
    printer->setDocName(shared.file_name);
    auto* dialog = new QPrintDialog(printer.get(), &button);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // The dialog keeps the printer, which has to outlive it.
    QObject::connect(dialog, &QObject::destroyed, [printer] {});
    QObject::connect(dialog, qOverload<QPrinter*>(&QPrintDialog::accepted), &button,
                     [shared](QPrinter* chosen) {
                         QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
                         fixed.setPointSizeF(print_size);
                         QTextDocument page;
                         page.setDefaultFont(fixed);
                         page.setPlainText(shared.text());
                         page.print(chosen);
                     });
    dialog->open();
}

} // namespace

bool save_shared_text(window_frame& frame, const shared_text& shared, const QString& file) {
    const QByteArray bytes = shared.text().toUtf8();
    QSaveFile target(file);
    if (target.open(QIODevice::WriteOnly) && target.write(bytes) == bytes.size() && target.commit())
        return true;
    frame.tell({QStringLiteral("The %1 was not saved").arg(shared.what),
                QStringLiteral("%1 cannot be written: %2. Choose another folder.")
                    .arg(QDir::toNativeSeparators(file), target.errorString()),
                {},
                nullptr});
    return false;
}

void add_share_menu(QPushButton& button, window_frame& frame, const shared_text& shared) {
    auto* menu = new QMenu(&button);
    QObject::connect(menu->addAction(QStringLiteral("Copy")), &QAction::triggered, &button,
                     [shared] { QGuiApplication::clipboard()->setText(shared.text()); });
    QObject::connect(menu->addAction(QStringLiteral("Save...")), &QAction::triggered, &button,
                     [&button, &frame, shared] { ask_for_file(button, frame, shared); });
    QObject::connect(menu->addAction(QStringLiteral("Print...")), &QAction::triggered, &button,
                     [&button, shared] { print(button, shared); });
    // Popped up by hand: a button's own menu runs an event loop.
    QObject::connect(&button, &QPushButton::clicked, menu,
                     [&button, menu] { menu->popup(button.mapToGlobal(QPoint(0, button.height()))); });
}
