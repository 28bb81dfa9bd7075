#include "app/diagnostics/code_pane.h"

#include "base/anonymity.h"

#include <QClipboard>
#include <QGuiApplication>

namespace brivant {

namespace {

QString paragraph(const QString& text, const QString& style) {
    return text.isEmpty()
               ? QString()
               : QStringLiteral("<p style=\"margin:0 0 6px 0; %1\">%2</p>").arg(style, text.toHtmlEscaped());
}

} // namespace

code_pane::code_pane(const Ui::read_codes_view& its_ui, const view_context& its_context)
    : ui(its_ui), context(its_context) {
    ui.code_text->document()->setDocumentMargin(0);
    connect(ui.show_frame, &QToolButton::clicked, this, &code_pane::frame_asked_for);
    connect(ui.show_tests, &QToolButton::clicked, this, &code_pane::tests_asked_for);
    connect(ui.copy_code, &QPushButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(for_others(detail.as_text()));
        context.window.show_toast(QStringLiteral("%1 was copied").arg(detail.code));
    });
    show_nothing();
}

void code_pane::show(const code_detail& its_detail) {
    detail = its_detail;
    ui.code_title->setText(detail.code);
    ui.code_text->setHtml(as_html());
    ui.copy_code->setEnabled(true);
    ui.show_frame->setVisible(!detail.frame.isEmpty());
    ui.show_tests->setVisible(!detail.tests.isEmpty());
}

void code_pane::show_nothing() {
    detail = {};
    ui.code_title->clear();
    ui.code_text->setHtml(paragraph(QStringLiteral("Choose a code to see what is known of it."),
                                    QStringLiteral("color:%1").arg(context.frame.look().muted.name())));
    ui.copy_code->setEnabled(false);
    ui.show_frame->hide();
    ui.show_tests->hide();
}

QString code_pane::as_html() const {
    const theme& look = context.frame.look();
    const QString quiet = QStringLiteral("color:%1").arg(look.muted.name());
    const QString strong = QStringLiteral("font-weight:600");
    const QString ecu = detail.ecu.isEmpty() ? QString() : detail.ecu + QStringLiteral(": ");
    QString html = paragraph(detail.description, strong) + paragraph(ecu + detail.kinds, {}) +
                   paragraph(detail.note, quiet);
    if (!detail.frame.isEmpty()) {
        html += paragraph(QStringLiteral("When it froze the frame"), strong) +
                QStringLiteral("<table cellspacing=\"0\" cellpadding=\"2\" style=\"margin:0 0 6px 0\">");
        for (const code_detail::frame_value& value : detail.frame)
            html += QStringLiteral("<tr><td style=\"%1; padding-right:16px\">%2</td><td>%3</td></tr>")
                        .arg(quiet, value.label.toHtmlEscaped(), value.value.toHtmlEscaped());
        html += QStringLiteral("</table>");
    }
    return html + paragraph(detail.tests, {});
}

} // namespace brivant
