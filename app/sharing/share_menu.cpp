#include "app/sharing/share_menu.h"

#include "app/sharing/saving.h"
#include "base/anonymity.h"
#include "base/printable.h"
#include "base/whole_file.h"

#include <QClipboard>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMenu>
#include <QPrinter>
#include <QTextDocument>

namespace brivant {

namespace {

constexpr double print_size = 9.5; // points

void ask_for_file(QPushButton& button, window_frame& frame, const shared_text& shared) {
    QFileDialog* dialog = dialog_for_saving(button, QStringLiteral("Save the %1").arg(shared.what),
                                            QStringLiteral("Text files (*.txt)"), QStringLiteral("txt"),
                                            documents_folder(), shared.file_name + QStringLiteral(".txt"));
    QObject::connect(dialog, &QFileDialog::fileSelected, &button,
                     [&frame, shared](const QString& file) { save_shared_text(frame, shared, file); });
    dialog->open();
}

void print(QPushButton& button, const shared_text& shared) {
    ask_for_printer(button, shared.file_name, [shared](QPrinter& chosen) {
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        fixed.setPointSizeF(print_size);
        QTextDocument page;
        page.setDefaultFont(fixed);
        page.setPlainText(for_others(shared.text()));
        page.print(&chosen);
    });
}

} // namespace

bool save_shared_text(window_frame& frame, const shared_text& shared, const QString& file) {
    const QByteArray bytes = printable(for_others(shared.text()).toUtf8());
    whole_file target(file);
    if (target.begin() && target.write(bytes) == bytes.size() && target.commit())
        return true;
    frame.tell(not_saved(shared.what, file, target.errorString()));
    return false;
}

void add_share_menu(QPushButton& button, window_frame& frame, const shared_text& shared) {
    auto* menu = new QMenu(&button);
    menu->addAction(QStringLiteral("Copy"), &button,
                    [shared] { QGuiApplication::clipboard()->setText(for_others(shared.text())); });
    menu->addAction(QStringLiteral("Save..."), &button,
                    [&button, &frame, shared] { ask_for_file(button, frame, shared); });
    menu->addAction(QStringLiteral("Print..."), &button, [&button, shared] { print(button, shared); });
    // Popped up by hand: a button's own menu runs an event loop.
    QObject::connect(&button, &QPushButton::clicked, menu,
                     [&button, menu] { menu->popup(button.mapToGlobal(QPoint(0, button.height()))); });
}

} // namespace brivant
