#include "app/diagnostics/report_button.h"

#include "app/sharing/saving.h"
#include "app/sharing/share_menu.h"
#include "base/anonymity.h"
#include "base/whole_file.h"
#include "persistence/vehicles.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QMenu>
#include <QPdfWriter>
#include <QPrinter>
#include <QTextCursor>
#include <QTextDocument>

namespace brivant {

namespace {

constexpr double print_size = 8.5; // points: the longest line of a test fits on A4
constexpr double heading_size = 14;
constexpr int pdf_dots_an_inch = 300;
const QString report_word = QStringLiteral("report");

} // namespace

report_button::report_button(QPushButton& its_button, const view_context& its_context,
                             readCodes& its_controller)
    : QObject(&its_button), button(its_button), context(its_context), controller(its_controller) {
    auto* menu = new QMenu(&button);
    menu->addAction(QStringLiteral("Save..."), this, [this] {
        ask_for_file(QStringLiteral("Save the report"), QStringLiteral("txt"),
                     QStringLiteral("Text files (*.txt)"), &report_button::save_as_text);
    });
    menu->addAction(QStringLiteral("Print..."), this, &report_button::print);
    menu->addAction(QStringLiteral("Save as PDF..."), this, [this] {
        ask_for_file(QStringLiteral("Save the report as PDF"), QStringLiteral("pdf"),
                     QStringLiteral("PDF files (*.pdf)"), &report_button::save_as_pdf);
    });
    connect(&button, &QPushButton::clicked, menu,
            [this, menu] { menu->popup(button.mapToGlobal(QPoint(0, -menu->sizeHint().height()))); });
}

void report_button::show_page(int its_operation) {
    operation = its_operation;
    show_operation();
}

bool report_button::has_results() const {
    const diagnostic_results& results = controller.results;
    switch (operation) {
    case op_vehicle_info: return results.has_rows(part::vehicle);
    case op_mode6: return results.has_rows(part::mode6);
    case op_misfire: return results.has_rows(part::misfire);
    case op_o2_tests: return results.has_rows(part::o2);
    case op_extras: return false; // leave no report
    default:
        return results.has_rows(part::codes) || results.has_rows(part::pending) ||
               results.has_rows(part::freeze) || !results.readinessFlagsArray.isEmpty();
    }
}

void report_button::show_operation() {
    button.setEnabled(has_results() && !controller.is_running());
    button.setToolTip(hint());
}

QString report_button::hint() const {
    if (operation == op_extras)
        return QStringLiteral("There is no report of the extras: select the rows and copy them");
    if (!has_results())
        return QStringLiteral("Read (F5) first: the report tells what was read");
    if (operation == op_read_codes || operation == op_pending_freeze)
        return QStringLiteral("Codes, readiness, pending codes and freeze frame as one text");
    return QStringLiteral("The results of this page as one text");
}

QString report_button::text() const {
    return for_others(without_markup(controller.report_of(operation).text));
}

void report_button::fill_page(QTextDocument& document) const {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(print_size);
    document.setDefaultFont(font);
    const auto car = vehicle_with_id(context.core.db, context.core.car.cur_veh_id());
    QTextCursor end(&document);
    QTextCharFormat words;
    words.setFont(QFontDatabase::systemFont(QFontDatabase::GeneralFont));
    words.setFontPointSize(heading_size);
    words.setFontWeight(QFont::DemiBold);
    end.insertText(QStringLiteral("Diagnostic report\n"), words);
    words.setFontPointSize(print_size);
    words.setFontWeight(QFont::Normal);
    if (car)
        end.insertText(car->name + QStringLiteral("\n\n"), words);
    end.insertText(text(), QTextCharFormat());
}

void report_button::ask_for_file(const QString& title, const QString& suffix, const QString& filter,
                                 void (report_button::*save)(const QString&)) {
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh.mm"));
    QFileDialog* dialog = dialog_for_saving(button, title, filter, suffix, documents_folder(),
                                            QStringLiteral("report %1.%2").arg(now, suffix));
    connect(dialog, &QFileDialog::fileSelected, this, save);
    dialog->open();
}

void report_button::save_as_text(const QString& file) {
    if (save_shared_text(context.frame, {report_word, {}, [this] { return text(); }}, file))
        tell_saved(file);
}

void report_button::save_as_pdf(const QString& file) {
    whole_file target(file);
    if (!target.begin())
        return context.frame.tell(not_saved(report_word, file, target.errorString()));
    {
        QPdfWriter writer(&target);
        writer.setResolution(pdf_dots_an_inch);
        writer.setTitle(QStringLiteral("Diagnostic report"));
        QTextDocument page;
        fill_page(page);
        page.print(&writer);
    }
    if (!target.commit())
        return context.frame.tell(not_saved(report_word, file, target.errorString()));
    tell_saved(file);
}

void report_button::print() {
    ask_for_printer(button, QStringLiteral("Diagnostic report"), [this](QPrinter& chosen) {
        QTextDocument page;
        fill_page(page);
        page.print(&chosen);
    });
}

void report_button::tell_saved(const QString& file) {
    context.window.show_toast(QStringLiteral("The report is in %1.").arg(QDir::toNativeSeparators(file)));
}

} // namespace brivant
