#pragma once

#include "diagnostics/diagnostic_host.h"
#include "initialisation/step_machine.h"

// What the tests over service 06 share: the start, one request an identifier, and the end.
class mode6_test : public step_machine {
public:
    // What differs from test to test.
    struct texts {
        QString starting;             // the first status
        QString toast;                // with a place for "Starting"
        QString querying;             // with places for index and count
        QString log_heading;          // with a place for the date
        QString failure;              // with a place for the reason
        QString list;                 // the name of the list for the screen
        result_list kept{};           // where its replies are kept
        bool retries_silence = false; // also when the adapter gave no answer, not only for no data
        int counts_from = 1;          // the index that is shown for the first identifier
    };

    mode6_test(operation_context& its_context, diagnostic_host& its_host, texts its_texts,
               QStringList& its_rows);

    void reset_retries() { no_data_retries = 0; }

protected:
    void work_step(int step, const QString& reply) override;
    QString failure_text() const override { return words.failure; }

    // Headers are on: the support request.
    virtual void ask_for_support() = 0;
    // Step 2 or 201: which identifiers the car has results for.
    virtual void support_answered(const QString& reply) = 0;

    // Asks for each identifier in turn, which takes the reply to step 3.
    void query(const QStringList& identifiers);
    void nothing_there(const QString& text, int sound);
    // The data of the ECU that is asked, in a reply with headers.
    QString first_ecu_data(const QString& reply) const;

    diagnostic_host& host;
    diagnostic_results& results;
    texts words;
    QStringList& rows;

private:
    void start();
    void headers_on(const QString& reply);
    void connection_checked(const QString& reply);
    void test_answered(const QString& reply);
    void ask_next();
    void all_answered();

    int no_data_retries = 0;
    QStringList test_IDs;
    qsizetype item = 0;
};

// The tests of a range of monitors that one map of supported identifiers (SAE J1979) tells, CAN only.
class monitor_range_test : public mode6_test {
public:
    struct range {
        QString support_request; // "06 A0"
        unsigned first = 0;      // the first identifier
        int count = 0;
        int map = 0;     // the index of the map that holds them
        QString no_data; // what is said when the car has no such map
    };

    monitor_range_test(operation_context& its_context, diagnostic_host& its_host, texts its_texts,
                       QStringList& its_rows, range its_range);

protected:
    void ask_for_support() override;
    void support_answered(const QString& reply) override;

private:
    range monitors;
};
