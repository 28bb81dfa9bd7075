#pragma once

#include "app/screen/screen_view.h"
#include "diagnostics/code_detail.h"
#include "ui_read_codes_view.h"

namespace brivant {

// The pane beside the list of codes: all that is known of the chosen one.
class code_pane : public QObject {
    Q_OBJECT

public:
    code_pane(const Ui::read_codes_view& its_ui, const view_context& its_context);

    void show(const code_detail& its_detail);
    void show_nothing();

Q_SIGNALS:
    void frame_asked_for();
    void tests_asked_for();

private:
    QString as_html() const;

    const Ui::read_codes_view& ui;
    view_context context;
    code_detail detail;
};

} // namespace brivant
