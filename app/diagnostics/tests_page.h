#pragma once

#include "app/diagnostics/result_page.h"
#include "app/diagnostics/test_delegate.h"
#include "app/diagnostics/tests_model.h"

#include <QTextBrowser>

namespace brivant {

// Test results with their limits: the rows, and below them the one that is selected.
class tests_page : public result_page {
    Q_OBJECT

public:
    tests_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
               const result_words& its_words);
    ~tests_page() override;

    void look_changed() override;

protected:
    void show_rows() override;
    QString summary() const override;
    QList<const second_reading*> readings() const override { return {&reading}; }

private:
    void show_detail();

    second_reading reading;
    tests_model model;
    test_delegate delegate;
};

} // namespace brivant
