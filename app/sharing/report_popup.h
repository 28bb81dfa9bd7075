#pragma once

#include "app/look/card_sheet.h"
#include "app/look/help_panel.h"
#include "app/sharing/share_menu.h"

namespace brivant {

// A stored report over the window, with a share button. It deletes itself.
class report_popup : public card_sheet {
    Q_OBJECT

public:
    // `html` loads nothing; `shared` is the same as plain text.
    report_popup(QWidget& asked_by, const view_context& context, const QString& title, const QString& html,
                 const shared_text& shared);
    void open() { card_sheet::open(*browser); }

private:
    help_browser* browser = nullptr;
};

} // namespace brivant
