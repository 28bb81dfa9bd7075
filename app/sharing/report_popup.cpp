#include "app/sharing/report_popup.h"

namespace brivant {

namespace {
constexpr int card_width = 640;
}

report_popup::report_popup(QWidget& asked_by, const view_context& context, const QString& title,
                           const QString& html, const shared_text& shared)
    : card_sheet(asked_by, title, card_width), browser(new help_browser) {
    browser->setObjectName(QStringLiteral("report_text"));
    browser->setProperty("role", QStringLiteral("detail"));
    browser->setAccessibleName(title);
    browser->set_look(context.frame.look());
    browser->setHtml(html);
    content()->addWidget(browser, 1);
    fill_room();
    add_share_menu(*add_button(QStringLiteral("Share..."), "report_share", false), context.frame, shared);
    connect(add_button(QStringLiteral("Close"), "report_close", true), &QPushButton::clicked, this,
            &card_sheet::close_sheet);
}

} // namespace brivant
