#pragma once

#include "app/diagnostics/reading_bar.h"
#include "app/diagnostics/results_model.h"
#include "app/screen/operation_head.h"
#include "ui_result_page.h"

namespace brivant {

// What tells the pages of results apart.
struct result_words {
    const char* name; // of the page's widgets
    part results;     // that it shows
    const char* title;
    const char* icon;
    const char* not_read; // before the first read
    const char* nothing;  // read, and no rows
    int operation;
    void (*run)(readCodes& controller);
};

// A card with a table, or with words while the table is empty.
struct result_card {
    QFrame& frame;
    QLabel& caption;
    QStackedWidget& stack;
    QLabel& icon;
    QLabel& empty_text;
    QTableView& table;

    // Rows as high as their texts need; the last column takes the room.
    void set_up(results_model& model, const QString& accessible_name, const theme& look);
    // The table when it has rows, otherwise `words`.
    void show_rows(results_model& model, const QString& words);
};

// A page that starts one operation and shows its rows. The derived pages fill the cards.
class result_page : public QObject {
    Q_OBJECT

public:
    // The widgets go to the end of `pages`, their names led by the page's ("mode6_read").
    result_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
                const result_words& its_words);

    void start();
    int operation() const { return words.operation; }
    virtual void reload(part what);
    // The operation `code` has ended; `done`: it reached its end.
    void ended(int code, bool done);
    void show_operation();
    virtual void look_changed();

protected:
    virtual void show_rows() = 0;
    // What is read twice; reloaded by show_rows().
    virtual QList<const second_reading*> readings() const { return {}; }
    // What is said about all rows, in the head.
    virtual QString summary() const { return {}; }
    // A read has left rows, be it on another card or before the screen was left.
    virtual bool has_results() const { return false; }
    // What an empty card says; `nothing` when the operation reached its end without a row for it.
    QString empty_words(const QString& nothing) const;
    QString nothing_words() const { return QString::fromUtf8(words.nothing); }

    view_context context;
    readCodes& controller;
    diagnostic_results& results;
    const result_words words;
    QWidget& view;
    const Ui::result_page ui;
    operation_head head;
    result_card card;
    result_card side;

private:
    reading_bar& bar;
    enum class last_read { none, left, done };
    last_read last = last_read::none;
};

// One table of texts: the vehicle, the extras.
class text_page : public result_page {
    Q_OBJECT

public:
    text_page(QStackedWidget& pages, const view_context& its_context, readCodes& its_controller,
              const result_words& its_words, const QStringList& headings, text_rows_model::split cells);

protected:
    void show_rows() override;
    QList<const second_reading*> readings() const override { return {&reading}; }

private:
    second_reading reading;
    text_rows_model model;
};

} // namespace brivant
