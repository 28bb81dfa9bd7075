#pragma once

#include "app/diagnostics/codes_model.h"
#include "app/diagnostics/result_page.h"

namespace brivant {

// Pending codes on the left, the freeze frame on the right.
class pending_page : public result_page {
    Q_OBJECT

public:
    pending_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                 const result_words& its_words);

    void reload(part what) override;

protected:
    void show_rows() override;
    bool has_results() const override {
        return results.has_rows(part::pending) || results.has_rows(part::freeze);
    }

    QList<const second_reading*> readings() const override { return {&code_reading, &frame_reading}; }

private:
    second_reading code_reading;
    second_reading frame_reading;
    codes_model codes;
    text_rows_model freeze;
};

} // namespace brivant
